// The heap of a test program: every operator new and delete is counted here, and can be made to
// fail.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vexqt::testing {

/// What the program asked of its heap while this object lives, on every thread.
class HeapWatch {
public:
    HeapWatch();
    HeapWatch(const HeapWatch&) = delete;
    HeapWatch& operator=(const HeapWatch&) = delete;

    /// Bytes that were asked for since and not given back.
    std::int64_t live() const;
    /// The most that was live at once.
    std::uint64_t peak() const;
    /// The most bytes that were asked for in one piece.
    std::uint64_t largest() const;
    std::uint64_t allocations() const;

private:
    std::int64_t liveBefore_;
    std::uint64_t allocationsBefore_;
};

/// Makes allocations fail while it lives.
class FailingHeap {
public:
    enum class Then {
        Recovers,  ///< One allocation fails, those after it do not.
        StaysFull  ///< Every allocation fails from that one on.
    };
    /// The n-th allocation from now on fails; the first is 1.
    FailingHeap(std::uint64_t n, Then then);
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;
    ~FailingHeap();

    /// Whether one has failed.
    bool hasFailed() const;
};

}  // namespace vexqt::testing

// The heap of a test program: every operator new and delete is counted here, and can be made to
// fail.
#pragma once

#include <cstddef>
#include <cstdint>

#include "limits/Failing.h"

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
class FailingHeap : public Failing {
public:
    FailingHeap(std::uint64_t n, Then then);
};

}  // namespace vexqt::testing

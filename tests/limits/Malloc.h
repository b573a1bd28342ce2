// What the C libraries take from the heap, which can be made to fail.
#pragma once

#include <cstdint>

namespace vexqt::testing {

/// Blocks that malloc, calloc and realloc gave out and that were not given back.
std::int64_t liveBlocks();

/// Makes malloc, calloc and realloc give nothing while it lives, on every thread.
class FailingMalloc {
public:
    enum class Then {
        Recovers,  ///< One call fails, those after it do not.
        StaysFull  ///< Every call fails from that one on.
    };
    /// The n-th call from now on fails; the first is 1.
    FailingMalloc(std::uint64_t n, Then then);
    FailingMalloc(const FailingMalloc&) = delete;
    FailingMalloc& operator=(const FailingMalloc&) = delete;
    ~FailingMalloc();

    /// Whether one has failed.
    bool hasFailed() const;
};

}  // namespace vexqt::testing

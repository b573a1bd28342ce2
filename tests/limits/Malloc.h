// What the C libraries take from the heap, which can be made to fail.
#pragma once

#include <cstdint>

#include "limits/Failing.h"

namespace vexqt::testing {

/// Blocks that malloc, calloc and realloc gave out and that were not given back.
std::int64_t liveBlocks();

/// Makes malloc, calloc and realloc give nothing while it lives.
class FailingMalloc : public Failing {
public:
    FailingMalloc(std::uint64_t n, Then then);
};

}  // namespace vexqt::testing

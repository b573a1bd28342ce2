// What bytes are called: owned, and looked at.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vexqt {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

}  // namespace vexqt

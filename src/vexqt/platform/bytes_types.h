// What bytes are called: owned, and looked at.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vexqt {

/// Bytes that somebody owns.
using Bytes = std::vector<std::uint8_t>;
/// Bytes that somebody else owns.
using ByteView = std::span<const std::uint8_t>;

}  // namespace vexqt

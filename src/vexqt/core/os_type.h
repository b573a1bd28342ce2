// Four-character codes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vexqt/export.h"

namespace vexqt {

/// A four-character code, the first character in the most significant byte.
using OSType = std::uint32_t;

inline namespace literals {
/// A code in the source: `"moov"_os`. Anything but four characters does not compile.
consteval OSType operator""_os(const char* text, std::size_t length) {
    if (length != 4) throw "a code has four characters";
    OSType code = 0;
    for (std::size_t i = 0; i < 4; ++i) code = code << 8 | static_cast<std::uint8_t>(text[i]);
    return code;
}
}  // namespace literals

/// An unknown or unset code. A class that has it for its type has no type of its own: its atoms
/// keep the type they are read with.
inline constexpr OSType kAnyType = "????"_os;

/// Four characters, one a byte: a byte above 0x7F is the character U+0080 to U+00FF.
VEXQT_EXPORT std::string textFromCode(OSType code);
/// The inverse: "????" for any text that is not four such characters.
VEXQT_EXPORT OSType codeFromText(std::string_view text);

/// A code as it stands in a path: its characters, or 0x and eight hexadecimal digits where one of
/// them is not printable ASCII or has a meaning in paths.
VEXQT_EXPORT std::string pathSegment(OSType code);
/// The same of an atom with that many of its type before it: "trak", or "trak[2]" for the third.
VEXQT_EXPORT std::string pathSegment(OSType code, std::size_t before);

}  // namespace vexqt

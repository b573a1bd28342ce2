#include "vexqt/core/os_type.h"

#include <algorithm>
#include <array>

namespace vexqt {

std::string textFromCode(OSType code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<std::uint8_t>(code >> shift);
        if (byte < 0x80) {
            text += static_cast<char>(byte);
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

OSType codeFromText(std::string_view text) {
    OSType code = 0;
    int characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i, ++characters) {
        auto byte = static_cast<std::uint8_t>(text[i]);
        if (byte >= 0x80) {
            // Two bytes of UTF-8 that stand for U+0080 to U+00FF.
            if ((byte != 0xC2 && byte != 0xC3) || ++i == text.size()) return kAnyType;
            const auto second = static_cast<std::uint8_t>(text[i]);
            if ((second & 0xC0) != 0x80) return kAnyType;
            byte = static_cast<std::uint8_t>((byte & 0x03) << 6 | (second & 0x3F));
        }
        code = code << 8 | byte;
    }
    return characters == 4 ? code : kAnyType;
}

std::string pathSegment(OSType code) {
    std::string text = textFromCode(code);
    const auto isPlain = [](char c) {
        return c >= ' ' && c <= '~' && c != '.' && c != '[' && c != ']' && c != '=';
    };
    if (std::ranges::all_of(text, isPlain)) return text;

    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string hexadecimal = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) hexadecimal += kDigits[code >> shift & 0xF];
    return hexadecimal;
}

std::string pathSegment(OSType code, std::size_t before) {
    return before == 0 ? pathSegment(code) : pathSegment(code) + '[' + std::to_string(before) + ']';
}

}  // namespace vexqt

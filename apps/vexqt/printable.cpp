#include "apps/vexqt/printable.h"

#include <algorithm>
#include <cstdint>

namespace vexqt::cli {

std::size_t lengthOfCharacter(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    if (text.empty()) return 0;
    if (byte(0) < 0x80) return 1;
    // The second byte's range leaves out what could be written shorter, halves of surrogate pairs
    // and what lies behind the last character.
    const std::uint8_t first = byte(0);
    std::size_t length = 0;
    std::uint8_t least = 0x80, most = 0xBF;
    if (first >= 0xC2 && first <= 0xDF) {
        length = 2;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3;
        if (first == 0xE0) least = 0xA0;
        if (first == 0xED) most = 0x9F;
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 4;
        if (first == 0xF0) least = 0x90;
        if (first == 0xF4) most = 0x8F;
    }
    if (length == 0 || text.size() < length || byte(1) < least || byte(1) > most) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    return length;
}

std::string printable(std::string_view text) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string out;
    out.reserve(text.size());
    const auto escape = [&out](std::uint8_t byte) {
        out += "\\x";
        out += kDigits[byte >> 4];
        out += kDigits[byte & 0xF];
    };
    while (!text.empty()) {
        const std::size_t length = lengthOfCharacter(text);
        const auto first = static_cast<std::uint8_t>(text[0]);
        // U+0080 to U+009F are control characters too, and terminals know them.
        if (length == 2 && first == 0xC2 && static_cast<std::uint8_t>(text[1]) < 0xA0) {
            escape(static_cast<std::uint8_t>(text[1]));
        } else if (length == 0 || first < 0x20 || first == 0x7F) {
            escape(first);
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

std::size_t columnsOf(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<std::uint8_t>(c) & 0xC0) != 0x80; }));
}

}  // namespace vexqt::cli

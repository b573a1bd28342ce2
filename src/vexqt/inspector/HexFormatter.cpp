#include "vexqt/inspector/HexFormatter.h"

#include <algorithm>
#include <limits>

namespace vexqt {

static std::optional<std::uint64_t> digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

std::optional<std::uint64_t> HexFormatter::scan(std::string_view text, std::uint64_t largest) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
    if (text.empty() || !digit(text.front())) return std::nullopt;

    std::uint64_t number = 0;
    bool isTooLarge = false;
    for (const char c : text) {
        const auto next = digit(c);
        if (!next) break;
        isTooLarge = isTooLarge || number > (largest >> 4);
        number = number << 4 | *next;
    }
    return isTooLarge ? largest : number;
}

bool HexFormatter::getObjectValue(Value& value, std::string_view string, std::string*) const {
    const auto number = scan(string, std::numeric_limits<std::uint32_t>::max());
    if (!number) return false;
    value = static_cast<std::int32_t>(*number);
    return true;
}

}  // namespace vexqt

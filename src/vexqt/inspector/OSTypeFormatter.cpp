#include "vexqt/inspector/OSTypeFormatter.h"

#include <algorithm>

#include "vexqt/core/os_type.h"

namespace vexqt {

std::string OSTypeFormatter::stringForObjectValue(const Value& value) const {
    const auto number = integerFrom(value);
    if (!number) return {};
    return textFromCode(static_cast<OSType>(*number));
}

bool OSTypeFormatter::getObjectValue(Value& value, std::string_view string, std::string*) const {
    const auto isASCII = [](char c) { return static_cast<std::uint8_t>(c) < 0x80; };
    if (string.size() > 4 || !std::ranges::all_of(string, isASCII)) return false;
    OSType code = 0;
    for (std::size_t i = 0; i < 4; ++i)
        code = code << 8 | static_cast<std::uint8_t>(i < string.size() ? string[i] : '\0');
    value = static_cast<std::int32_t>(code);
    return true;
}

}  // namespace vexqt

#include "vexqt/inspector/Hex4ByteFormatter.h"

#include <cstdio>

namespace vexqt {

std::string Hex4ByteFormatter::stringForObjectValue(const Value& value) const {
    const auto number = integerFrom(value);
    if (!number) return {};
    const std::int64_t extended = static_cast<std::int32_t>(*number);
    char text[sizeof "0xFFFFFFFF00000000"];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(extended));
    return text;
}

}  // namespace vexqt

#include "vexqt/inspector/Hex8ByteFormatter.h"

#include <cstdio>
#include <limits>

namespace vexqt {

std::string Hex8ByteFormatter::stringForObjectValue(const Value& value) const {
    const auto number = integerFrom(value);
    if (!number) return {};
    char text[sizeof "0x0000000000000000"];
    std::snprintf(text, sizeof text, "0x%16llX", static_cast<unsigned long long>(*number));
    return text;
}

bool Hex8ByteFormatter::getObjectValue(Value& value, std::string_view string, std::string*) const {
    const auto number = scan(string, std::numeric_limits<std::uint64_t>::max());
    if (!number) return false;
    value = static_cast<std::int64_t>(*number);
    return true;
}

}  // namespace vexqt

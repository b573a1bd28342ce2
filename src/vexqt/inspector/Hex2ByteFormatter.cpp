#include "vexqt/inspector/Hex2ByteFormatter.h"

#include <cstdio>

namespace vexqt {

std::string Hex2ByteFormatter::stringForObjectValue(const Value& value) const {
    const auto number = integerFrom(value);
    if (!number) return {};
    char text[sizeof "0x0000"];
    std::snprintf(text, sizeof text, "0x%04hX", static_cast<unsigned short>(*number));
    return text;
}

}  // namespace vexqt

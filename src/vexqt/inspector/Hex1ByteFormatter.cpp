#include "vexqt/inspector/Hex1ByteFormatter.h"

#include <cstdio>

namespace vexqt {

std::string Hex1ByteFormatter::stringForObjectValue(const Value& value) const {
    const auto number = integerFrom(value);
    if (!number) return {};
    char text[sizeof "0x00"];
    std::snprintf(text, sizeof text, "0x%02hhX", static_cast<unsigned char>(*number));
    return text;
}

}  // namespace vexqt

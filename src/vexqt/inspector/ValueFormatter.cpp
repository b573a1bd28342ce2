#include "vexqt/inspector/ValueFormatter.h"

#include "vexqt/inspector/Hex1ByteFormatter.h"
#include "vexqt/inspector/Hex2ByteFormatter.h"
#include "vexqt/inspector/Hex4ByteFormatter.h"
#include "vexqt/inspector/Hex8ByteFormatter.h"
#include "vexqt/inspector/OSTypeFormatter.h"

namespace vexqt {

const ValueFormatter* formatterNamed(std::string_view className) {
    static const Hex1ByteFormatter hex1;
    static const Hex2ByteFormatter hex2;
    static const Hex4ByteFormatter hex4;
    static const Hex8ByteFormatter hex8;
    static const OSTypeFormatter osType;
    static const std::pair<std::string_view, const ValueFormatter*> formatters[] = {
        {"Hex1ByteFormatter", &hex1}, {"Hex2ByteFormatter", &hex2}, {"Hex4ByteFormatter", &hex4},
        {"Hex8ByteFormatter", &hex8}, {"OSTypeFormatter", &osType},
    };
    for (const auto& [name, formatter] : formatters)
        if (name == className) return formatter;
    return nullptr;
}

}  // namespace vexqt

#pragma once

#include "vexqt/inspector/HexFormatter.h"

namespace vexqt {

/// The low two bytes of a number: 0x12345 shows as 0x2345.
class VEXQT_INSPECTOR_EXPORT Hex2ByteFormatter final : public HexFormatter {
public:
    std::string stringForObjectValue(const Value& value) const override;
};

}  // namespace vexqt

#pragma once

#include "vexqt/inspector/HexFormatter.h"

namespace vexqt {

/// The low four bytes of a number as a signed number of 64 bits: at least eight digits, and sixteen
/// where the top bit is set. 0x80000000 shows as 0xFFFFFFFF80000000.
class VEXQT_INSPECTOR_EXPORT Hex4ByteFormatter final : public HexFormatter {
public:
    std::string stringForObjectValue(const Value& value) const override;
};

}  // namespace vexqt

#pragma once

#include "vexqt/inspector/HexFormatter.h"

namespace vexqt {

/// The low byte of a number: 0x1234 shows as 0x34.
class VEXQT_INSPECTOR_EXPORT Hex1ByteFormatter final : public HexFormatter {
public:
    std::string stringForObjectValue(const Value& value) const override;
};

}  // namespace vexqt

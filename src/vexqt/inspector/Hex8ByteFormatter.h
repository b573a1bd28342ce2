#pragma once

#include "vexqt/inspector/HexFormatter.h"

namespace vexqt {

/// A number of 64 bits, padded with blanks to sixteen characters behind the 0x.
class VEXQT_INSPECTOR_EXPORT Hex8ByteFormatter final : public HexFormatter {
public:
    std::string stringForObjectValue(const Value& value) const override;
    /// Gives the 64 bits that were read as a signed number.
    bool getObjectValue(Value& value, std::string_view string,
                        std::string* errorDescription) const override;
};

}  // namespace vexqt

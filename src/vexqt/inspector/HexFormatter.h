#pragma once

#include "vexqt/inspector/ValueFormatter.h"

namespace vexqt {

/// What the hexadecimal formatters share: the texts that they take.
///
/// Blanks in front, then perhaps 0x, then digits; what follows the digits is ignored, and a number
/// that is too large becomes the largest. Fields of one and two bytes take as much as one of four:
/// the property that is set keeps what it has room for.
class VEXQT_INSPECTOR_EXPORT HexFormatter : public ValueFormatter {
public:
    /// Gives the 32 bits that were read as a signed number: 0xFFFFFFFF is -1.
    bool getObjectValue(Value& value, std::string_view string,
                        std::string* errorDescription) const override;

protected:
    /// The number that a text begins with, at most the largest; absent where there are no digits.
    static std::optional<std::uint64_t> scan(std::string_view text, std::uint64_t largest);
};

}  // namespace vexqt

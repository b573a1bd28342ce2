// The format's fixed-point numbers and four-character codes, each way.
//
// Several of these conversions are not each other's inverse, and files and hosts depend on just
// that: a whole negative number reads one lower than it was written, a signed 8.8 fraction of one
// half or more borrows from the whole part, and the 2.30 forms keep 16 of their 30 fraction bits.
#pragma once

#include "vexqt/core/os_type.h"
#include "vexqt/export.h"

namespace vexqt {

/// The conversions, inherited by every atom.
struct VEXQT_EXPORT ValueCodecs {
    /// Four characters, one a byte, from the most significant byte down; bytes above 0x7F are the
    /// characters U+0080 to U+00FF, unprintable bytes stand for themselves.
    static std::string stringWithOSType(OSType code);
    /// "????" for a text that is not four characters long, or has one beyond U+00FF.
    static OSType OSTypeWithString(std::string_view text);

    // Patterns of 8.8 numbers lie in the low half, zero-extended.
    /// To 8.8 bits with a sign.
    static std::int32_t doubleToSignedFixed88(double value);
    /// From 8.8 bits with a sign: a fraction of one half or more borrows from the whole part.
    static double signedFixed88ToDouble(std::int32_t pattern);
    /// To 16.16 bits with a sign.
    static std::int32_t doubleToSignedFixed1616(double value);
    /// From 16.16 bits with a sign: a whole negative number reads one lower.
    static double signedFixed1616ToDouble(std::int32_t pattern);
    /// To 2.30 bits with a sign, of which 16 fraction bits are kept.
    static std::int32_t doubleToSignedFixed230(double value);
    /// From 2.30 bits with a sign, of which 16 fraction bits count.
    static double signedFixed230ToDouble(std::int32_t pattern);

    /// To 8.8 bits without a sign.
    static std::uint32_t doubleToUnsignedFixed88(double value);
    /// From 8.8 bits without a sign: 0 to 255.996.
    static double unsignedFixed88ToDouble(std::uint32_t pattern);
    /// To 16.16 bits without a sign.
    static std::uint32_t doubleToUnsignedFixed1616(double value);
    /// From 16.16 bits without a sign: 0 to 65535.99998.
    static double unsignedFixed1616ToDouble(std::uint32_t pattern);
    /// To 2.30 bits without a sign, of which 16 fraction bits are kept.
    static std::uint32_t doubleToUnsignedFixed230(double value);
    /// From 2.30 bits without a sign: 0 to 3.99998.
    static double unsignedFixed230ToDouble(std::uint32_t pattern);
};

}  // namespace vexqt

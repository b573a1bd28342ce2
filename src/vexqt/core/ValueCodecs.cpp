#include "vexqt/core/ValueCodecs.h"

#include <cmath>
#include <limits>

namespace vexqt {

namespace {

/// Truncates toward zero. What does not fit 32 bits keeps its low 32; what is not finite is the
/// smallest 32-bit number.
std::int32_t truncated(double value) {
    if (!std::isfinite(value)) return std::numeric_limits<std::int32_t>::min();
    constexpr double kRange = 4294967296.0;  // 2^32
    return static_cast<std::int32_t>(static_cast<std::int64_t>(std::fmod(value, kRange)));
}

/// Integer part and fraction part each as given; a sum below zero comes out one lower.
double signedSum(std::int32_t whole, double fraction) {
    const double sum = whole + fraction;
    return sum < 0 ? sum - 1.0 : sum;
}

std::uint32_t low16(std::int32_t value) { return static_cast<std::uint32_t>(value) & 0xFFFF; }

constexpr double kScale88 = 256.0;
constexpr double kScale1616 = 65536.0;
constexpr double kScale230 = 1073741824.0;

/// The signed forms of 32 bits keep the low 16 bits of the scaled fraction, whatever its width.
std::int32_t encodedSigned(double value, int shift, double scale) {
    const std::int32_t whole = truncated(value);
    const std::int32_t fraction = truncated((value - static_cast<std::int16_t>(whole)) * scale);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(whole) << shift | low16(fraction));
}

std::uint32_t encodedUnsigned(double value, std::int32_t whole, int shift, double scale) {
    const std::int32_t fraction = truncated((value - low16(whole)) * scale);
    return static_cast<std::uint32_t>(whole) << shift | low16(fraction);
}

}  // namespace

std::string ValueCodecs::stringWithOSType(OSType code) { return textFromCode(code); }
OSType ValueCodecs::OSTypeWithString(std::string_view text) { return codeFromText(text); }

std::int32_t ValueCodecs::doubleToSignedFixed88(double value) {
    const std::int32_t whole = truncated(value);
    const std::int32_t fraction = truncated((value - static_cast<std::int8_t>(whole)) * kScale88);
    // The fraction byte is added as a signed byte, so one half or more lowers the whole part.
    const std::int64_t sum = std::int64_t{whole} * 256 + static_cast<std::int8_t>(fraction);
    return static_cast<std::int32_t>(sum & 0xFFFF);
}

double ValueCodecs::signedFixed88ToDouble(std::int32_t pattern) {
    return signedSum(static_cast<std::int8_t>(pattern / 256), (pattern & 0xFF) / kScale88);
}

std::int32_t ValueCodecs::doubleToSignedFixed1616(double value) {
    return encodedSigned(value, 16, kScale1616);
}

double ValueCodecs::signedFixed1616ToDouble(std::int32_t pattern) {
    return signedSum(pattern / 65536, (pattern & 0xFFFF) / kScale1616);
}

std::int32_t ValueCodecs::doubleToSignedFixed230(double value) {
    return encodedSigned(value, 30, kScale230);
}

double ValueCodecs::signedFixed230ToDouble(std::int32_t pattern) {
    return signedSum(pattern / 1073741824, (pattern & 0xFFFF) / kScale230);
}

std::uint32_t ValueCodecs::doubleToUnsignedFixed88(double value) {
    const auto whole = static_cast<std::uint32_t>(truncated(value));
    const std::int32_t fraction = truncated((value - (whole & 0xFF)) * kScale88);
    return (whole << 8 | (static_cast<std::uint32_t>(fraction) & 0xFF)) & 0xFFFF;
}

double ValueCodecs::unsignedFixed88ToDouble(std::uint32_t pattern) {
    return (pattern >> 8 & 0xFF) + (pattern & 0xFF) / kScale88;
}

std::uint32_t ValueCodecs::doubleToUnsignedFixed1616(double value) {
    // The one conversion that rounds down rather than toward zero.
    return encodedUnsigned(value, truncated(std::floor(value)), 16, kScale1616);
}

double ValueCodecs::unsignedFixed1616ToDouble(std::uint32_t pattern) {
    return (pattern >> 16) + (pattern & 0xFFFF) / kScale1616;
}

std::uint32_t ValueCodecs::doubleToUnsignedFixed230(double value) {
    return encodedUnsigned(value, truncated(value), 30, kScale230);
}

double ValueCodecs::unsignedFixed230ToDouble(std::uint32_t pattern) {
    return (pattern >> 30) + (pattern & 0xFFFF) / kScale230;
}

}  // namespace vexqt

#include "vexqt/core/ValueCodecs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace vexqt {
namespace {

// The conversions once more, in whole numbers alone: a number is held as its multiple of 2^-40.

__extension__ using Whole = __int128;

constexpr Whole kOne = Whole{1} << 40;
constexpr Whole kTwoTo32 = Whole{1} << 32;

/// The multiple of 2^-40 that a double is. It must be one, and below 2^50.
Whole exact(double value) {
    const double scaled = std::ldexp(value, 40);
    int exponent = 0;
    const double mantissa = std::frexp(scaled, &exponent);
    const auto bits = static_cast<Whole>(static_cast<std::int64_t>(std::ldexp(mantissa, 53)));
    return exponent >= 53 ? bits * (Whole{1} << (exponent - 53))
                          : bits / (Whole{1} << (53 - exponent));
}

/// The remainder that lies from 0 up, whatever the sign of the number.
Whole modulo(Whole number, Whole divisor) { return ((number % divisor) + divisor) % divisor; }
Whole low(Whole number, int bits) { return modulo(number, Whole{1} << bits); }
Whole lowSigned(Whole number, int bits) {
    const Whole half = Whole{1} << (bits - 1);
    return low(number + half, bits) - half;
}
/// Toward zero, as a signed number of 32 bits.
Whole truncated(Whole number) { return lowSigned(number / kOne, 32); }
/// Down, as a signed number of 32 bits.
Whole roundedDown(Whole number) { return lowSigned((number - modulo(number, kOne)) / kOne, 32); }
/// What is left of a number above a whole one, in parts of that many bits, cut toward zero.
Whole parts(Whole number, Whole whole, int bits) {
    return truncated((number - whole * kOne) * (Whole{1} << bits));
}

struct Form {
    const char* name;
    int wholeFrom;     ///< Where the whole part begins in the pattern.
    int fractionBits;  ///< How many bits of the fraction are kept.
    double (*decode)(std::uint32_t);
    std::uint32_t (*encode)(double);
    Whole (*decodedExactly)(const Form&, std::uint32_t);
    Whole (*encodedExactly)(const Form&, Whole);
};

Whole decodedSigned(const Form& form, std::uint32_t pattern) {
    // The pattern of an 8.8 number arrives zero-extended.
    const Whole number = form.wholeFrom == 8 ? Whole{pattern} : lowSigned(pattern, 32);
    Whole whole = number / (Whole{1} << form.wholeFrom);
    if (form.wholeFrom == 8) whole = lowSigned(whole, 8);
    const Whole fraction = low(number, form.fractionBits);
    const Whole sum = whole * kOne + fraction * (kOne >> form.wholeFrom);
    return sum < 0 ? sum - kOne : sum;
}

Whole decodedUnsigned(const Form& form, std::uint32_t pattern) {
    const Whole whole = Whole{pattern} / (Whole{1} << form.wholeFrom);
    return whole * kOne + low(pattern, form.fractionBits) * (kOne >> form.wholeFrom);
}

Whole encodedSigned88(const Form&, Whole number) {
    const Whole whole = truncated(number);
    const Whole fraction = parts(number, lowSigned(whole, 8), 8);
    return low(whole * 256 + lowSigned(fraction, 8), 16);
}

Whole encodedSigned(const Form& form, Whole number) {
    const Whole whole = truncated(number);
    const Whole fraction = parts(number, lowSigned(whole, 16), form.wholeFrom);
    return low(low(whole * (Whole{1} << form.wholeFrom), 32) | low(fraction, 16), 32);
}

Whole encodedUnsigned88(const Form&, Whole number) {
    const Whole whole = truncated(number);
    const Whole fraction = parts(number, low(whole, 8), 8);
    return low(whole * 256, 16) + low(fraction, 8);
}

Whole encodedUnsigned(const Form& form, Whole number) {
    const Whole whole = form.wholeFrom == 16 ? roundedDown(number) : truncated(number);
    const Whole fraction = parts(number, low(whole, 16), form.wholeFrom);
    return low(low(whole * (Whole{1} << form.wholeFrom), 32) | low(fraction, 16), 32);
}

template <double (*decode)(std::int32_t)>
double decoded(std::uint32_t pattern) {
    return decode(static_cast<std::int32_t>(pattern));
}
template <std::int32_t (*encode)(double)>
std::uint32_t encoded(double value) {
    return static_cast<std::uint32_t>(encode(value));
}

constexpr Form kForms[] = {
    {"signed 8.8", 8, 8, decoded<ValueCodecs::signedFixed88ToDouble>,
     encoded<ValueCodecs::doubleToSignedFixed88>, decodedSigned, encodedSigned88},
    {"signed 16.16", 16, 16, decoded<ValueCodecs::signedFixed1616ToDouble>,
     encoded<ValueCodecs::doubleToSignedFixed1616>, decodedSigned, encodedSigned},
    {"signed 2.30", 30, 16, decoded<ValueCodecs::signedFixed230ToDouble>,
     encoded<ValueCodecs::doubleToSignedFixed230>, decodedSigned, encodedSigned},
    {"unsigned 8.8", 8, 8, ValueCodecs::unsignedFixed88ToDouble,
     ValueCodecs::doubleToUnsignedFixed88, decodedUnsigned, encodedUnsigned88},
    {"unsigned 16.16", 16, 16, ValueCodecs::unsignedFixed1616ToDouble,
     ValueCodecs::doubleToUnsignedFixed1616, decodedUnsigned, encodedUnsigned},
    {"unsigned 2.30", 30, 16, ValueCodecs::unsignedFixed230ToDouble,
     ValueCodecs::doubleToUnsignedFixed230, decodedUnsigned, encodedUnsigned},
};

/// Every pattern of 16 bits; of 32 bits every low half under telling high ones, and a walk through
/// all of them.
std::vector<std::uint32_t> patterns(const Form& form) {
    std::vector<std::uint32_t> all;
    for (std::uint32_t low = 0; low <= 0xFFFF; ++low) {
        all.push_back(low);
        if (form.wholeFrom == 8) continue;
        for (const std::uint32_t high :
             {1U, 0x3FFFU, 0x4000U, 0x7FFFU, 0x8000U, 0xBFFFU, 0xC000U, 0xFFFEU, 0xFFFFU})
            all.push_back(high << 16 | low);
    }
    if (form.wholeFrom != 8)
        for (std::uint64_t pattern = 0; pattern <= 0xFFFFFFFF; pattern += 65521)
            all.push_back(static_cast<std::uint32_t>(pattern));
    return all;
}

/// Numbers with few enough bits that no step on the way through doubles rounds.
std::vector<double> numbers() {
    std::vector<double> all;
    for (int i = -40000; i <= 40000; ++i) {
        all.push_back(i / 256.0);         // Every 8.8 number and its neighbours.
        all.push_back(i / 512.0);         // Between two of them.
        all.push_back(i / 65536.0);       // Every small 16.16 number.
        all.push_back(i / 131072.0);      // Between two of them.
        all.push_back(i / 1073741824.0);  // Every small 2.30 number.
        all.push_back(i * 65521.0);       // Beyond 32 bits.
        all.push_back(i * 65521.0 + 0.5);
    }
    std::mt19937_64 random(1904);
    for (int i = 0; i < 100000; ++i) {
        const auto mantissa = static_cast<std::int64_t>(random()) >> 28;  // 36 bits.
        const int exponent = static_cast<int>(random() % 49) - 36;
        all.push_back(std::ldexp(static_cast<double>(mantissa), exponent));
    }
    return all;
}

TEST(ValueCodecs, DecodesEveryPatternAsDefined) {
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.name);
        for (const std::uint32_t pattern : patterns(form)) {
            const double value = form.decode(pattern);
            ASSERT_TRUE(exact(value) == form.decodedExactly(form, pattern))
                << std::hex << pattern << " gives " << value;
        }
    }
}

TEST(ValueCodecs, EncodesEveryNumberAsDefined) {
    const std::vector<double> all = numbers();
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.name);
        for (const double value : all) {
            const std::uint32_t pattern = form.encode(value);
            ASSERT_TRUE(Whole{pattern} == form.encodedExactly(form, exact(value)))
                << value << " gives " << std::hex << pattern;
        }
    }
}

TEST(ValueCodecs, EncodesWhatEveryPatternDecodesToAsDefined) {
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.name);
        for (const std::uint32_t pattern : patterns(form)) {
            const double value = form.decode(pattern);
            ASSERT_TRUE(Whole{form.encode(value)} == form.encodedExactly(form, exact(value)))
                << std::hex << pattern;
        }
    }
}

TEST(ValueCodecs, UnsignedPatternsOf88And1616ComeBack) {
    for (const Form& form : {kForms[3], kForms[4]}) {
        SCOPED_TRACE(form.name);
        for (const std::uint32_t pattern : patterns(form))
            ASSERT_EQ(form.encode(form.decode(pattern)), pattern);
    }
}

TEST(ValueCodecs, KeepsTheLow32BitsOfWhatFitsNoMore) {
    struct Case {
        const char* what;
        double value;
        std::uint32_t signed88, signed1616, signed230, unsigned88, unsigned1616, unsigned230;
    };
    static const Case kCases[] = {
        {"2^31", 2147483648.0, 0, 0, 0, 0, 0, 0},
        {"2^32 + 1.25", 4294967297.25, 0x0140, 0x00014000, 0x40000000, 0x0140, 0x00014000,
         0x40000000},
        {"2^32 - 1.25", 4294967294.75, 0xFDC0, 0xFFFEC000, 0x80000000, 0xFEC0, 0xFFFEC000,
         0x80000000},
        {"-2^63", -9223372036854775808.0, 0, 0, 0, 0, 0, 0},
        {"2^64", 18446744073709551616.0, 0, 0, 0, 0, 0, 0},
        {"2^63 + 2^11", 9223372036854777856.0, 0, 0x08000000, 0, 0, 0x08000000, 0},
        {"the largest double", std::numeric_limits<double>::max(), 0, 0, 0, 0, 0, 0},
        {"the smallest double", std::numeric_limits<double>::lowest(), 0, 0, 0, 0, 0, 0},
        {"the least positive double", std::numeric_limits<double>::denorm_min(), 0, 0, 0, 0, 0, 0},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.what);
        const std::uint32_t expected[] = {c.signed88,   c.signed1616,   c.signed230,
                                          c.unsigned88, c.unsigned1616, c.unsigned230};
        for (std::size_t i = 0; i < std::size(kForms); ++i)
            EXPECT_EQ(kForms[i].encode(c.value), expected[i]) << kForms[i].name;
    }
}

TEST(ValueCodecs, TakesWhatIsNotFiniteForTheSmallest32BitNumber) {
    // Its low bits are zeros, and so is the fraction above it.
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()})
        for (const Form& form : kForms) EXPECT_EQ(form.encode(value), 0U) << form.name << value;
}

TEST(ValueCodecs, ASigned88FractionOfOneHalfBorrows) {
    EXPECT_EQ(ValueCodecs::doubleToSignedFixed88(1.25), 0x0140);
    EXPECT_EQ(ValueCodecs::doubleToSignedFixed88(1.5), 0x0080);
    EXPECT_EQ(ValueCodecs::doubleToSignedFixed88(0.5), 0xFF80);
    EXPECT_EQ(ValueCodecs::doubleToSignedFixed88(-1.5), 0xFE80);
}

TEST(ValueCodecs, ASigned88NumberBelowZeroReadsOneLower) {
    EXPECT_EQ(ValueCodecs::signedFixed88ToDouble(0x0100), 1.0);
    EXPECT_EQ(ValueCodecs::signedFixed88ToDouble(0x0080), 0.5);
    EXPECT_EQ(ValueCodecs::signedFixed88ToDouble(0xFF80), -1.5);
    EXPECT_EQ(ValueCodecs::signedFixed88ToDouble(0xFF00), -2.0);
}

TEST(ValueCodecs, ASigned1616NumberBelowZeroReadsOneLower) {
    EXPECT_EQ(kForms[1].decode(0x00010000), 1.0);
    EXPECT_EQ(kForms[1].decode(0x00018000), 1.5);
    EXPECT_EQ(kForms[1].decode(0xFFFE8000), -1.5);
    EXPECT_EQ(kForms[1].decode(0xFFFF0000), -2.0);
    EXPECT_EQ(kForms[1].decode(0xFFFF8000), 0.5);  // Its whole part is cut to zero.
}

TEST(ValueCodecs, ASigned1616NumberIsCutTowardZero) {
    EXPECT_EQ(kForms[1].encode(-1.0), 0xFFFF0000U);
    EXPECT_EQ(kForms[1].encode(-1.5), 0xFFFF8000U);
    EXPECT_EQ(kForms[1].encode(-0.5), 0x00008000U);
    EXPECT_EQ(kForms[1].encode(0.5), 0x00008000U);
    EXPECT_EQ(kForms[1].encode(-2.0), 0xFFFE0000U);
}

TEST(ValueCodecs, ASigned230NumberHas16BitsOfFraction) {
    EXPECT_EQ(kForms[2].encode(1.0), 0x40000000U);
    EXPECT_EQ(kForms[2].decode(0x40000000), 1.0);
    EXPECT_EQ(kForms[2].encode(0.5), 0U);
    EXPECT_EQ(kForms[2].decode(0x20000000), 0.0);
    EXPECT_EQ(kForms[2].encode(-1.0), 0xC0000000U);
    EXPECT_EQ(kForms[2].decode(0xC0000000), -2.0);
}

TEST(ValueCodecs, AnUnsigned88WholePartWraps) {
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed88(1.5), 0x0180U);
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed88(256.5), 0x0080U);
}

TEST(ValueCodecs, AnUnsigned1616NumberComesBack) {
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed1616(72.0), 0x00480000U);
    EXPECT_EQ(ValueCodecs::unsignedFixed1616ToDouble(0x00480000), 72.0);
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed1616(44100.0), 0xAC440000U);
    EXPECT_EQ(ValueCodecs::unsignedFixed1616ToDouble(0xAC440000), 44100.0);
}

TEST(ValueCodecs, AnUnsigned1616NumberAloneIsRoundedDown) {
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed1616(-0.25), 0xFFFFC000U);
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed88(-0.25), 0x00C0U);
    EXPECT_EQ(ValueCodecs::doubleToUnsignedFixed230(-0.25), 0U);
}

TEST(ValueCodecs, CodesAndTextsGiveEachOther) {
    EXPECT_EQ(ValueCodecs::stringWithOSType(0x6D6F6F76), "moov");
    EXPECT_EQ(ValueCodecs::OSTypeWithString("moov"), 0x6D6F6F76U);
}

}  // namespace
}  // namespace vexqt

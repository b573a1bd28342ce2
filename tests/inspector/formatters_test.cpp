#include <gtest/gtest.h>

#include "vexqt/inspector/Hex1ByteFormatter.h"
#include "vexqt/inspector/Hex2ByteFormatter.h"
#include "vexqt/inspector/Hex4ByteFormatter.h"
#include "vexqt/inspector/Hex8ByteFormatter.h"
#include "vexqt/inspector/OSTypeFormatter.h"

namespace vexqt {

using namespace std::string_literals;

/// What a text becomes; absent for one that is refused.
template <class Formatter>
static Value parsed(std::string_view text) {
    Value value;
    Formatter().getObjectValue(value, text, nullptr);
    return value;
}

template <class Formatter>
static std::string shown(const Value& value) {
    return Formatter().stringForObjectValue(value);
}

// MARK: Display

TEST(Hex1ByteFormatter, ShowsTheLowByteInTwoUpperCaseDigits) {
    EXPECT_EQ(shown<Hex1ByteFormatter>(0x1234), "0x34");
    EXPECT_EQ(shown<Hex1ByteFormatter>(0xA), "0x0A");
    EXPECT_EQ(shown<Hex1ByteFormatter>(-1), "0xFF");
    EXPECT_EQ(shown<Hex1ByteFormatter>(std::uint64_t{0xFFFFFFFFFFFFFF80}), "0x80");
}

TEST(Hex2ByteFormatter, ShowsTheLowTwoBytesInFourUpperCaseDigits) {
    EXPECT_EQ(shown<Hex2ByteFormatter>(0x12345), "0x2345");
    EXPECT_EQ(shown<Hex2ByteFormatter>(0xAB), "0x00AB");
    EXPECT_EQ(shown<Hex2ByteFormatter>(-2), "0xFFFE");
}

TEST(Hex4ByteFormatter, ShowsAtLeastEightUpperCaseDigits) {
    EXPECT_EQ(shown<Hex4ByteFormatter>(0xABC), "0x00000ABC");
    EXPECT_EQ(shown<Hex4ByteFormatter>(0x7FFFFFFF), "0x7FFFFFFF");
}

TEST(Hex4ByteFormatter, ShowsSixteenDigitsWhereTheTopBitIsSet) {
    EXPECT_EQ(shown<Hex4ByteFormatter>(0x80000000U), "0xFFFFFFFF80000000");
    EXPECT_EQ(shown<Hex4ByteFormatter>(0xFFFFFFFFU), "0xFFFFFFFFFFFFFFFF");
    EXPECT_EQ(shown<Hex4ByteFormatter>(-2), "0xFFFFFFFFFFFFFFFE");
}

TEST(Hex4ByteFormatter, LeavesOutWhatLiesAboveFourBytes) {
    EXPECT_EQ(shown<Hex4ByteFormatter>(std::uint64_t{0x123456789}), "0x23456789");
}

TEST(Hex8ByteFormatter, PadsToSixteenCharactersWithBlanks) {
    EXPECT_EQ(shown<Hex8ByteFormatter>(255), "0x              FF");
    EXPECT_EQ(shown<Hex8ByteFormatter>(0), "0x               0");
    EXPECT_EQ(shown<Hex8ByteFormatter>(std::uint64_t{0xFEDCBA9876543210}), "0xFEDCBA9876543210");
    EXPECT_EQ(shown<Hex8ByteFormatter>(-1), "0xFFFFFFFFFFFFFFFF");
}

TEST(Formatters, ShowTheNumberInANumberObject) {
    EXPECT_EQ(shown<Hex1ByteFormatter>(Number(std::int8_t{-3})), "0xFD");
    EXPECT_EQ(shown<Hex4ByteFormatter>(Number(2.75F)), "0x00000002");
}

TEST(Formatters, ShowNothingForWhatIsNoNumber) {
    EXPECT_EQ(shown<Hex1ByteFormatter>({}), "");
    EXPECT_EQ(shown<Hex2ByteFormatter>("12"), "");
    EXPECT_EQ(shown<Hex4ByteFormatter>(Bytes{1}), "");
    EXPECT_EQ(shown<Hex8ByteFormatter>({}), "");
    EXPECT_EQ(shown<OSTypeFormatter>({}), "");
}

TEST(OSTypeFormatter, ShowsFourBytesFromTheMostSignificantDown) {
    EXPECT_EQ(shown<OSTypeFormatter>(0x76696465), "vide");
    EXPECT_EQ(shown<OSTypeFormatter>(0x3F3F3F3F), "????");
}

TEST(OSTypeFormatter, ShowsAByteAbove7FAsItsLatinCharacter) {
    EXPECT_EQ(shown<OSTypeFormatter>(0xA96E616DU), "\u00A9nam");
    EXPECT_EQ(shown<OSTypeFormatter>(static_cast<std::int32_t>(0xA96E616D)), "\u00A9nam");
}

TEST(OSTypeFormatter, LeavesAZeroByteAsItIs) {
    EXPECT_EQ(shown<OSTypeFormatter>(0x61006200), "a\0b\0"s);
}

// MARK: Parsing

template <class Formatter>
class EveryHexFormatter : public testing::Test {};
using HexFormatters =
    testing::Types<Hex1ByteFormatter, Hex2ByteFormatter, Hex4ByteFormatter, Hex8ByteFormatter>;
TYPED_TEST_SUITE(EveryHexFormatter, HexFormatters);

TYPED_TEST(EveryHexFormatter, TakesDigitsBehindBlanksAndAPrefix) {
    struct Case {
        std::string_view text;
        std::int64_t number;
    };
    for (const Case& c : {Case{"  0x0a", 10}, Case{"0X0A", 10}, Case{"0a", 10}, Case{"\t\n\r 7", 7},
                          Case{"0xdeF", 0xDEF}, Case{"0", 0}, Case{"0x0", 0},
                          Case{"000000000000000000000001", 1}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(parsed<TypeParam>(c.text), Value(c.number));
    }
}

TYPED_TEST(EveryHexFormatter, IgnoresWhatFollowsTheDigits) {
    EXPECT_EQ(parsed<TypeParam>("1Fzz"), Value(0x1F));
    EXPECT_EQ(parsed<TypeParam>("12 34"), Value(0x12));
    EXPECT_EQ(parsed<TypeParam>("1\0"s + "2"), Value(1));
}

TYPED_TEST(EveryHexFormatter, RefusesTextsWithoutDigitsAndLeavesTheValue) {
    for (const std::string_view text : {"xyz", "", "   ", "0x", "0xg", "-1", "+1", "0x 1", "$1"}) {
        SCOPED_TRACE(text);
        Value value = 42;
        std::string error = "untouched";
        EXPECT_FALSE(TypeParam().getObjectValue(value, text, &error));
        EXPECT_EQ(value, Value(42));
        EXPECT_EQ(error, "untouched");
    }
}

TYPED_TEST(EveryHexFormatter, MakesNoCheckAgainstTheWidthOfTheField) {
    EXPECT_EQ(parsed<TypeParam>("0x1FF"), Value(511));
    EXPECT_EQ(parsed<TypeParam>("12345"), Value(0x12345));
}

template <class Formatter>
class EveryNarrowHexFormatter : public testing::Test {};
using NarrowHexFormatters = testing::Types<Hex1ByteFormatter, Hex2ByteFormatter, Hex4ByteFormatter>;
TYPED_TEST_SUITE(EveryNarrowHexFormatter, NarrowHexFormatters);

TYPED_TEST(EveryNarrowHexFormatter, GivesASignedNumberOf32Bits) {
    EXPECT_EQ(parsed<TypeParam>("0xFFFFFFFF"), Value(-1));
    EXPECT_EQ(parsed<TypeParam>("0x80000000"), Value(std::int64_t{-2147483648}));
    EXPECT_EQ(parsed<TypeParam>("0x7FFFFFFF"), Value(2147483647));
    EXPECT_TRUE(std::holds_alternative<std::int64_t>(parsed<TypeParam>("1")));
}

TYPED_TEST(EveryNarrowHexFormatter, TakesAnOverflowAsTheLargestNumberOf32Bits) {
    EXPECT_EQ(parsed<TypeParam>("0x100000000"), Value(-1));
    EXPECT_EQ(parsed<TypeParam>("123456789ABCDEF0123456789"), Value(-1));
}

TEST(Hex8ByteFormatter, GivesASignedNumberOf64Bits) {
    EXPECT_EQ(parsed<Hex8ByteFormatter>("0xFFFFFFFF"), Value(4294967295));
    EXPECT_EQ(parsed<Hex8ByteFormatter>("0x7FFFFFFFFFFFFFFF"),
              Value(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(parsed<Hex8ByteFormatter>("0x8000000000000000"),
              Value(std::numeric_limits<std::int64_t>::min()));
    EXPECT_TRUE(std::holds_alternative<std::int64_t>(parsed<Hex8ByteFormatter>("1")));
}

TEST(Hex8ByteFormatter, TakesAnOverflowAsTheLargestNumberOf64Bits) {
    EXPECT_EQ(parsed<Hex8ByteFormatter>("0x10000000000000000"), Value(-1));
}

TEST(OSTypeFormatter, TakesFourCharactersAsACode) {
    EXPECT_EQ(parsed<OSTypeFormatter>("vide"), Value(0x76696465));
    EXPECT_TRUE(std::holds_alternative<std::int64_t>(parsed<OSTypeFormatter>("vide")));
}

TEST(OSTypeFormatter, FillsAShortCodeWithZeroBytes) {
    EXPECT_EQ(parsed<OSTypeFormatter>("ab"), Value(0x61620000));
    EXPECT_EQ(parsed<OSTypeFormatter>(""), Value(0));
    EXPECT_EQ(parsed<OSTypeFormatter>("a\0bc"s), Value(0x61006263));
}

TEST(OSTypeFormatter, RefusesFiveCharactersAndWhatIsNotASCII) {
    for (const std::string_view text : {"abcde", "\u00A9nam", "\u00A9", "ab\xFF"}) {
        SCOPED_TRACE(text);
        Value value = 42;
        std::string error = "untouched";
        EXPECT_FALSE(OSTypeFormatter().getObjectValue(value, text, &error));
        EXPECT_EQ(value, Value(42));
        EXPECT_EQ(error, "untouched");
    }
}

// MARK: By name

TEST(Formatters, AreFoundByTheirClassNames) {
    EXPECT_NE(dynamic_cast<const Hex1ByteFormatter*>(formatterNamed("Hex1ByteFormatter")), nullptr);
    EXPECT_NE(dynamic_cast<const Hex2ByteFormatter*>(formatterNamed("Hex2ByteFormatter")), nullptr);
    EXPECT_NE(dynamic_cast<const Hex4ByteFormatter*>(formatterNamed("Hex4ByteFormatter")), nullptr);
    EXPECT_NE(dynamic_cast<const Hex8ByteFormatter*>(formatterNamed("Hex8ByteFormatter")), nullptr);
    EXPECT_NE(dynamic_cast<const OSTypeFormatter*>(formatterNamed("OSTypeFormatter")), nullptr);
    EXPECT_EQ(formatterNamed("HexFormatter"), nullptr);
    EXPECT_EQ(formatterNamed(""), nullptr);
}

}  // namespace vexqt

#include "apps/vexqt/value_text.h"

#include <gtest/gtest.h>

#include "apps/vexqt/json_document.h"
#include "vexqt/core/os_type.h"

namespace vexqt::cli {
namespace {

const Field kByte = {.name = "byte", .width = 1, .kind = ValueKind::Unsigned, .bits = 8};
const Field kShort = {.name = "short", .kind = ValueKind::Signed, .bits = 16};
const Field kWord = {.name = "word", .kind = ValueKind::Unsigned, .bits = 32};
const Field kLong = {.name = "long", .kind = ValueKind::Signed, .bits = 64};
const Field kUnsignedLong = {.name = "long", .kind = ValueKind::Unsigned, .bits = 64};
/// Three bytes in the file, four in memory.
const Field kThreeBytes = {.name = "three", .width = 3, .kind = ValueKind::Unsigned, .bits = 32};
const Field kCode =
    Field{.name = "code", .kind = ValueKind::Unsigned, .bits = 32}.as(Display::Code);
const Field kFlags =
    Field{.name = "flags", .kind = ValueKind::Unsigned, .bits = 16}.as(Display::Hexadecimal);
const Field kDouble = {.name = "double", .kind = ValueKind::Floating, .bits = 64};
/// A whole number that has half of its four bytes, and one with a sign in memory that has none
/// in the file.
const Field kHalf =
    Field{.name = "half", .width = 4, .kind = ValueKind::Unsigned, .bits = 32}.within({0, 65536});
const Field kSide =
    Field{.name = "side", .width = 2, .kind = ValueKind::Signed, .bits = 32}.within({0, 65536});
const Field kFixed =
    Field{.name = "fixed", .kind = ValueKind::Floating, .bits = 64}.within({-2, 2});
const Field kBoolean = {.name = "boolean", .kind = ValueKind::Boolean, .bits = 8};
const Field kText = {.name = "text", .kind = ValueKind::Text, .isOptional = true};
const Field kDate = {.name = "date", .width = 4, .kind = ValueKind::Instant, .isOptional = true};
const Field kAnyDate = {.name = "date", .kind = ValueKind::Instant};
const Field kBytes = {.name = "bytes", .kind = ValueKind::Data, .isOptional = true};
const Field kMatrix = {.name = "matrix", .kind = ValueKind::Transformation};
const Field kColor = {.name = "color", .kind = ValueKind::Color, .isOptional = true};
const Field kNumber = {.name = "number", .kind = ValueKind::Number, .isOptional = true};

const Date kNoon = std::chrono::sys_days{std::chrono::year{2024} / 5 / 1} + std::chrono::hours(12);

std::string failure(const Field& field, std::string_view text) {
    try {
        valueFromText(field, text);
    } catch (const ValueError& error) {
        return error.message();
    }
    return "";
}

TEST(ValueText, TextsStandForValuesOfTheirKind) {
    const struct {
        const Field& field;
        std::string_view text;
        Value value;
    } cases[] = {
        {kByte, "255", 255U},
        {kByte, "0xff", 255U},
        {kByte, " 7 ", 7U},
        {kShort, "-32768", -32768},
        {kShort, "0x7FFF", 32767},
        {kShort, "0xFFFF", -1},
        {kLong, "-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {kLong, "0xFFFFFFFFFFFFFFFF", -1},
        {kUnsignedLong, "18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
        {kThreeBytes, "16777215", 0xFFFFFFU},
        {kHalf, "65535", 65535U},
        {kSide, "0xFFFF", 65535},
        {kFixed, "-2", -2.0},
        {kFixed, "1.99999999", 1.99999999},
        {kCode, "vide", std::uint64_t{"vide"_os}},
        {kCode, "qt  ", std::uint64_t{"qt  "_os}},
        {kCode, "????", std::uint64_t{kAnyType}},
        {kCode, "\u00A9nam", std::uint64_t{0xA96E616D}},
        {kCode, "0x0000001F", std::uint64_t{0x1F}},
        {kFlags, "15", 15U},
        {kFlags, "0x000F", 15U},
        {kDouble, "-1.5", -1.5},
        {kDouble, "+2", 2.0},
        {kDouble, "1e3", 1000.0},
        {kBoolean, "true", true},
        {kBoolean, "no", false},
        {kBoolean, "1", true},
        {kText, " a=b ", " a=b "},
        {kText, "", ""},
        {kText, "null", "null"},
        {kDate, "2024-05-01T12:00:00Z", kNoon},
        {kDate, "2024-05-01 12:00:00", kNoon},
        {kDate, "null", Value()},
        {kAnyDate, "1900-01-01", Date(std::chrono::sys_days{std::chrono::year{1900} / 1 / 1})},
        {kBytes, "00fF", Bytes{0x00, 0xFF}},
        {kBytes, "00 01 ", Bytes{0x00, 0x01}},
        {kBytes, "", Bytes{}},
        {kBytes, "null", Value()},
        {kMatrix, "1 2 0.5 4 5 -2 7 8 1", Matrix{1, 2, 0.5, 4, 5, -2, 7, 8, 1}},
        {kMatrix, "[1, 0, 0, 0, -1, 0, 0.5,0 , 1]", Matrix{1, 0, 0, 0, -1, 0, 0.5, 0, 1}},
        {kColor, "#FF0033", Color::rgb(1, 0, 0.2)},
        {kColor, "#ff003300", Color::rgb(1, 0, 0.2, 0)},
        {kColor, "1 0.5 0", Color::rgb(1, 0.5, 0)},
        {kColor, "1,0.5,0,0.25", Color::rgb(1, 0.5, 0, 0.25)},
        {kColor, "0.5", Color::grey(0.5)},
        {kColor, "0.5 0.75", Color::grey(0.5, 0.75)},
        {kColor, R"({"red": 1, "green": 0.5, "blue": 0, "alpha": 0.25})",
         Color::rgb(1, 0.5, 0, 0.25)},
        {kColor, R"({"white": 0.5, "alpha": 1})", Color::grey(0.5)},
        {kColor, "null", Value()},
        {kNumber, "18446744073709551615", Number(std::numeric_limits<std::uint64_t>::max())},
        {kNumber, "-7", Number(-7)},
        {kNumber, "0x10", Number(16U)},
        {kNumber, "1.5", Number(1.5F)},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.field.name) + " " + std::string(each.text));
        EXPECT_EQ(valueFromText(each.field, each.text), each.value);
    }
}

TEST(ValueText, WhatDoesNotFitIsRefusedWithWhatWould) {
    const struct {
        const Field& field;
        std::string_view text, message;
    } cases[] = {
        {kByte, "256", "a whole number from 0 to 255 expected, not '256'"},
        {kByte, "-1", "a whole number from 0 to 255 expected, not '-1'"},
        {kByte, "0x100", "a whole number from 0 to 255 expected, not '0x100'"},
        {kByte, "", "a whole number from 0 to 255 expected, not ''"},
        {kByte, "1.5", "a whole number from 0 to 255 expected, not '1.5'"},
        {kByte, "0x", "a whole number from 0 to 255 expected, not '0x'"},
        {kByte, "null", "a whole number from 0 to 255 expected, not 'null'"},
        {kThreeBytes, "16777216", "a whole number from 0 to 16777215 expected, not '16777216'"},
        {kHalf, "65536", "a whole number from 0 to 65535 expected, not '65536'"},
        {kSide, "-1", "a whole number from 0 to 65535 expected, not '-1'"},
        {kFixed, "2", "a number from -2 to less than 2 expected, not '2'"},
        {kFixed, "-2.001", "a number from -2 to less than 2 expected, not '-2.001'"},
        {kFixed, "x", "a number from -2 to less than 2 expected, not 'x'"},
        {kMatrix, "32768 0 0 0 1 0 0 0 1",
         "a matrix with numbers from -32768 to less than 32768 in its first two columns expected, "
         "not '32768 0 0 0 1 0 0 0 1'"},
        {kMatrix, "1 0 0 0 1 0 0 0 2",
         "a matrix with numbers from -2 to less than 2 in its third column expected, not "
         "'1 0 0 0 1 0 0 0 2'"},
        {kWord, "4294967296", "a whole number from 0 to 4294967295 expected, not '4294967296'"},
        {kShort, "32768", "a whole number from -32768 to 32767 expected, not '32768'"},
        {kShort, "-32769", "a whole number from -32768 to 32767 expected, not '-32769'"},
        {kShort, "0x10000", "a whole number from -32768 to 32767 expected, not '0x10000'"},
        {kUnsignedLong, "18446744073709551616",
         "a whole number from 0 to 18446744073709551615 expected, not '18446744073709551616'"},
        {kCode, "vid",
         "a code of four characters, or 0x and eight hexadecimal digits, expected, not 'vid'"},
        {kCode, "\u20ACuro",
         "a code of four characters, or 0x and eight hexadecimal digits, expected, not "
         "'\u20ACuro'"},
        {kDouble, "1,5", "a number expected, not '1,5'"},
        {kDouble, "nan", "a number expected, not 'nan'"},
        {kDouble, "inf", "a number expected, not 'inf'"},
        {kDouble, "1e999", "a number expected, not '1e999'"},
        {kBoolean, "2", "true or false expected, not '2'"},
        {kText, "\xFF", "text in UTF-8 expected, not '\\xFF'"},
        {kDate, "yesterday", "a date such as 2001-01-31T12:00:00Z expected, not 'yesterday'"},
        {kDate, "1903-12-31",
         "a date from 1904-01-01T00:00:00Z to 2040-02-06T06:28:15Z expected, not '1903-12-31'"},
        {kDate, "2040-02-06T06:28:16Z",
         "a date from 1904-01-01T00:00:00Z to 2040-02-06T06:28:15Z expected, not "
         "'2040-02-06T06:28:16Z'"},
        {kBytes, "0", "bytes of two hexadecimal digits each expected, not '0'"},
        {kBytes, "0g", "bytes of two hexadecimal digits each expected, not '0g'"},
        {kMatrix, "1 2 3", "a matrix of nine numbers expected, not '1 2 3'"},
        {kMatrix, "1 2 3 4 5 6 7 8 9 10",
         "a matrix of nine numbers expected, not '1 2 3 4 5 6 7 8 9 10'"},
        {kMatrix, "1,2,3,4,5,6,7,8,9,",
         "a matrix of nine numbers expected, not "
         "'1,2,3,4,5,6,7,8,9,'"},
        {kColor, "red",
         "a colour (#RRGGBB, #RRGGBBAA, red green blue [alpha], or grey [alpha]) expected, not "
         "'red'"},
        {kColor, R"({"red": 1, "green": 0.5})",
         "a colour (#RRGGBB, #RRGGBBAA, red green blue [alpha], or grey [alpha]) expected, not "
         R"('{"red": 1, "green": 0.5}')"},
        {kNumber, "many", "a number expected, not 'many'"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.field.name) + " " + std::string(each.text));
        EXPECT_EQ(failure(each.field, each.text), each.message);
    }
}

TEST(ValueText, ALongTextIsQuotedInPart) {
    EXPECT_EQ(failure(kByte, std::string(1000, '1')),
              "a whole number from 0 to 255 expected, not '" + std::string(60, '1') + "\u2026'");
}

TEST(ValueText, WhatIsPrintedBareCanBeGivenBack) {
    const struct {
        const Field& field;
        Value value;
        std::string_view text;
    } cases[] = {
        {kByte, 7U, "7"},
        {kLong, -5, "-5"},
        {kCode, std::uint64_t{0xA96E616D}, "\u00A9nam"},
        {kFlags, 15U, "15"},
        {kDouble, 0.1, "0.1"},
        {kBoolean, true, "true"},
        {kText, "a \"b\"\n", "a \"b\"\n"},
        {kDate, kNoon, "2024-05-01T12:00:00Z"},
        {kDate, Value(), "null"},
        {kBytes, Bytes{0xAB, 0x00}, "ab00"},
        {kBytes, Bytes{}, ""},
        {kMatrix, Matrix{1, 0, 0, 0, 0.5, 0, -3, 0, 1}, "[1, 0, 0, 0, 0.5, 0, -3, 0, 1]"},
        {kColor, Color::rgb(1, 0.5, 0, 0.25),
         R"({"red": 1, "green": 0.5, "blue": 0, "alpha": 0.25})"},
        {kColor, Color::grey(0.5), R"({"white": 0.5, "alpha": 1})"},
        {kNumber, Number(-7), "-7"},
        {kNumber, Number(0.1F), "0.10000000149011612"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(bareText(each.field, each.value), each.text);
        EXPECT_EQ(valueFromText(each.field, each.text), each.value);
    }
}

TEST(ValueText, PeopleReadCodesHexadecimalNumbersDatesAndColours) {
    const struct {
        const Field& field;
        Value value;
        std::string_view text;
    } cases[] = {
        {kByte, 7U, "7"},
        {kCode, std::uint64_t{"vide"_os}, "'vide'"},
        {kCode, std::uint64_t{0x00000A41}, R"('\x00\x00\x0AA')"},
        {kFlags, 9U, "0x0009"},
        {kFlags, 15U, "0x000F (15)"},
        {kText, "a\tb", R"("a\x09b")"},
        {kText, Value(), "absent"},
        {kDate, kNoon, "2024-05-01 12:00:00 UTC"},
        {kColor, Color::rgb(1, 0.5, 0),
         "#FF8000  red 100.0 %, green 50.0 %, blue 0.0 %, alpha 100.0 %"},
        {kColor, Color::grey(0.25, 0.5), "grey 25.0 %, alpha 50.0 %"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(readableText(each.field, each.value), each.text);
    }
}

TEST(ValueText, ValuesAreTheSameButForRounding) {
    const struct {
        Value meant, read;
        bool isSame;
    } cases[] = {
        {7U, 7, true},
        {7U, 8U, false},
        {1'000'000'000'000U, 1'000'000'000'001U, false},
        {1.1, 1.09999, true},
        {1.1, 1.0, false},
        {1e9, 1e9 + 1, true},
        {1.0, Value(), false},
        {"a", "a", true},
        {"a", "b", false},
        {Number(5), Number(5U), true},
        {Number(5), Number(6U), false},
        {Number(0.5F), Number(0.5F), true},
        {Number(1.5F), Number(1), false},
        {Matrix{1, 2}, Matrix{1, 2.001}, true},
        {Matrix{1, 2}, Matrix{1, 2.1}, false},
        {Color::grey(0.5), Color::rgb(0.5, 0.5, 0.501), true},
        {Color::rgb(1, 0, 0), Color::rgb(0, 0, 0), false},
        {Picture({1, 1}, Bytes{1, 2, 3, 4}), Picture({1, 1}, Bytes{1, 2, 3, 5}), true},
        {Picture({2, 1}, Bytes(8)), Picture({1, 2}, Bytes(8)), false},
        {Bytes{1}, Bytes{2}, false},
        {Value(), Value(), true},
    };
    int number = 0;
    for (const auto& each : cases) {
        SCOPED_TRACE(number++);
        EXPECT_EQ(isSameButForRounding(each.meant, each.read), each.isSame);
        EXPECT_EQ(isSameButForRounding(each.read, each.meant), each.isSame);
    }
}

}  // namespace
}  // namespace vexqt::cli

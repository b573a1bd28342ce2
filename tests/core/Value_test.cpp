#include "vexqt/core/Value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Value, HoldsEveryIntegerInOneOfTwoTypes) {
    EXPECT_EQ(std::get<std::uint64_t>(Value(std::uint8_t{200})), 200U);
    EXPECT_EQ(std::get<std::uint64_t>(Value(std::uint16_t{60000})), 60000U);
    EXPECT_EQ(std::get<std::uint64_t>(Value(0xFFFFFFFFU)), 0xFFFFFFFFU);
    EXPECT_EQ(std::get<std::int64_t>(Value(std::int8_t{-3})), -3);
    EXPECT_EQ(std::get<std::int64_t>(Value(-70000)), -70000);
    EXPECT_TRUE(std::get<bool>(Value(true)));
}

TEST(Value, HoldsSinglePrecisionAsDouble) {
    EXPECT_EQ(std::get<double>(Value(0.1F)), static_cast<double>(0.1F));
}

TEST(Value, TakesTextInAnyForm) {
    EXPECT_EQ(std::get<std::string>(Value("ab")), "ab");
    EXPECT_EQ(std::get<std::string>(Value(std::string_view("abc").substr(1))), "bc");
    EXPECT_EQ(std::get<std::string>(Value(std::string("cd"))), "cd");
}

TEST(Value, TakesNoPointerForABoolean) {
    EXPECT_FALSE((std::is_constructible_v<Value, const VexQTAtom*>));
    EXPECT_FALSE((std::is_constructible_v<Value, const int*>));
    EXPECT_TRUE((std::is_constructible_v<Value, VexQTAtom*>));
}

TEST(Value, IsAbsentFromAnEmptyOptional) {
    EXPECT_TRUE(Value().isAbsent());
    EXPECT_TRUE(Value(std::optional<std::string>()).isAbsent());
    EXPECT_FALSE(Value(std::optional<std::string>("")).isAbsent());
    EXPECT_EQ(Value(std::optional<std::uint16_t>(7)), Value(std::uint64_t{7}));
}

TEST(Value, IntegersCompareByWhatTheyCount) {
    EXPECT_EQ(Value(5), Value(5U));
    EXPECT_NE(Value(-1), Value(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_NE(Value(5U), Value(6));
    EXPECT_NE(Value(1), Value(true));
    EXPECT_NE(Value(1), Value(1.0));
    EXPECT_NE(Value(), Value(0));
}

TEST(IntegerFrom, GivesTheBitsOfAnyNumber) {
    EXPECT_EQ(integerFrom(Value(0xFFFFFFFFFFFFFFFFU)), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(integerFrom(Value(-2)), 0xFFFFFFFFFFFFFFFEU);
    EXPECT_EQ(integerFrom(Value(true)), 1U);
    EXPECT_EQ(integerFrom(Value(false)), 0U);
    EXPECT_EQ(integerFrom(Value(Number(-3))), 0xFFFFFFFFFFFFFFFDU);
    EXPECT_EQ(integerFrom(Value(Number(2.75F))), 2U);
}

TEST(IntegerFrom, CutsAFractionTowardZeroAndWraps) {
    EXPECT_EQ(integerFrom(Value(1.99)), 1U);
    EXPECT_EQ(integerFrom(Value(-1.99)), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(integerFrom(Value(-0.5)), 0U);
    EXPECT_EQ(integerFrom(Value(9223372036854775808.0)), 0x8000000000000000U);
    EXPECT_EQ(integerFrom(Value(-9223372036854775808.0)), 0x8000000000000000U);
    EXPECT_EQ(integerFrom(Value(18446744073709551616.0)), 0U);
    EXPECT_EQ(integerFrom(Value(18446744073709555712.0)), 4096U);  // 2^64 + 2^12
}

TEST(IntegerFrom, GivesZeroForWhatIsNotFinite) {
    EXPECT_EQ(integerFrom(Value(std::nan(""))), 0U);
    EXPECT_EQ(integerFrom(Value(kInfinity)), 0U);
    EXPECT_EQ(integerFrom(Value(-kInfinity)), 0U);
}

TEST(IntegerFrom, GivesNothingForWhatIsNoNumber) {
    for (const Value& value : {Value(), Value("1"), Value(Bytes{1}), Value(Date()), Value(Matrix()),
                               Value(static_cast<VexQTAtom*>(nullptr))})
        EXPECT_EQ(integerFrom(value), std::nullopt) << value.index();
}

TEST(DoubleFrom, GivesAnyNumber) {
    EXPECT_EQ(doubleFrom(Value(0.25)), 0.25);
    EXPECT_EQ(doubleFrom(Value(-2)), -2.0);
    EXPECT_EQ(doubleFrom(Value(0xFFFFFFFFFFFFFFFFU)), 18446744073709551616.0);
    EXPECT_EQ(doubleFrom(Value(true)), 1.0);
    EXPECT_EQ(doubleFrom(Value(Number(-3))), -3.0);
    EXPECT_EQ(doubleFrom(Value(Number(2.5F))), 2.5);
    EXPECT_EQ(doubleFrom(Value(kInfinity)), kInfinity);
}

TEST(DoubleFrom, GivesNothingForWhatIsNoNumber) {
    EXPECT_EQ(doubleFrom(Value()), std::nullopt);
    EXPECT_EQ(doubleFrom(Value("1")), std::nullopt);
}

TEST(Number, KeepsTheKindItWasMadeWith) {
    EXPECT_TRUE(Number(1.5F).isFloat());
    EXPECT_FALSE(Number(1).isFloat());
    EXPECT_TRUE(std::holds_alternative<std::int64_t>(Number(std::int8_t{-1}).held()));
    EXPECT_TRUE(std::holds_alternative<std::uint64_t>(Number(std::uint8_t{1}).held()));
}

TEST(Number, GivesTheLowBitsOfAnInteger) {
    const Number number(0xFEDCBA9876543210U);
    EXPECT_EQ(number.uint64Value(), 0xFEDCBA9876543210U);
    EXPECT_EQ(number.uint32Value(), 0x76543210U);
    EXPECT_EQ(Number(0x89ABCDEFU).int32Value(), static_cast<std::int32_t>(0x89ABCDEF));
    EXPECT_EQ(Number(-2).int64Value(), -2);
    EXPECT_EQ(Number(-2).uint32Value(), 0xFFFFFFFEU);
    EXPECT_EQ(Number(16777217).floatValue(), 16777216.0F);
}

TEST(Number, CutsAFloatTowardZero) {
    EXPECT_EQ(Number(-2.75F).int64Value(), -2);
    EXPECT_EQ(Number(-2.75F).floatValue(), -2.75F);
    EXPECT_EQ(Number(std::numeric_limits<float>::quiet_NaN()).int64Value(), 0);
}

}  // namespace
}  // namespace vexqt

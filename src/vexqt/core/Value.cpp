#include "vexqt/core/Value.h"

#include <cmath>

namespace vexqt {

namespace {

/// Cut toward zero, wrapping into 64 bits; 0 for what is not finite.
std::uint64_t wholeOf(double value) {
    if (!std::isfinite(value)) return 0;
    constexpr double kRange = 18446744073709551616.0;  // 2^64
    const auto whole = static_cast<std::uint64_t>(std::fmod(std::abs(value), kRange));
    return value < 0 ? 0 - whole : whole;
}

}  // namespace

std::uint64_t Number::uint64Value() const {
    if (const auto* number = std::get_if<float>(&held_)) return wholeOf(double{*number});
    if (const auto* number = std::get_if<std::int64_t>(&held_))
        return static_cast<std::uint64_t>(*number);
    return std::get<std::uint64_t>(held_);
}

float Number::floatValue() const {
    return std::visit([](auto number) { return static_cast<float>(number); }, held_);
}

std::optional<std::uint64_t> integerFrom(const Value& value) {
    if (const auto* number = std::get_if<std::uint64_t>(&value)) return *number;
    if (const auto* number = std::get_if<std::int64_t>(&value))
        return static_cast<std::uint64_t>(*number);
    if (const auto* number = std::get_if<double>(&value)) return wholeOf(*number);
    if (const auto* number = std::get_if<Number>(&value)) return number->uint64Value();
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    return std::nullopt;
}

std::optional<double> doubleFrom(const Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<std::uint64_t>(&value))
        return static_cast<double>(*number);
    if (const auto* number = std::get_if<std::int64_t>(&value)) return static_cast<double>(*number);
    if (const auto* number = std::get_if<Number>(&value))
        return std::visit([](auto held) { return static_cast<double>(held); }, number->held());
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    return std::nullopt;
}

bool operator==(const Value& left, const Value& right) {
    const auto* unsignedLeft = std::get_if<std::uint64_t>(&left);
    const auto* unsignedRight = std::get_if<std::uint64_t>(&right);
    const auto* signedLeft = std::get_if<std::int64_t>(&left);
    const auto* signedRight = std::get_if<std::int64_t>(&right);
    if (unsignedLeft && signedRight) return std::cmp_equal(*unsignedLeft, *signedRight);
    if (signedLeft && unsignedRight) return std::cmp_equal(*signedLeft, *unsignedRight);
    return static_cast<const ValueVariant&>(left) == static_cast<const ValueVariant&>(right);
}

}  // namespace vexqt

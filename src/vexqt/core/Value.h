// A property's value on its way to or from a view, a script or JSON.
#pragma once

#include <array>
#include <chrono>
#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "vexqt/export.h"
#include "vexqt/platform/Color.h"
#include "vexqt/platform/Picture.h"
#include "vexqt/platform/bytes_types.h"
#include "vexqt/platform/dates.h"

namespace vexqt {

class VexQTAtom;

/// A transformation matrix in file order: a, b, u, c, d, v, x, y, w.
using Matrix = std::array<double, 9>;

/// A tagged number: a signed or unsigned integer of 64 bits, or a single-precision float.
class VEXQT_EXPORT Number {
public:
    Number() = default;
    /// An integer of 64 bits, signed as the type is.
    template <std::integral T>
    explicit Number(T value)
        : held_(static_cast<std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>(
              value)) {}
    /// A float.
    explicit Number(float value) : held_(value) {}

    /// Whether it is no integer.
    bool isFloat() const { return std::holds_alternative<float>(held_); }
    /// The low bits of an integer; a float truncated toward zero, its low bits kept.
    std::int32_t int32Value() const { return static_cast<std::int32_t>(uint64Value()); }
    /// The same, unsigned.
    std::uint32_t uint32Value() const { return static_cast<std::uint32_t>(uint64Value()); }
    /// The integer; a float truncated toward zero.
    std::int64_t int64Value() const { return static_cast<std::int64_t>(uint64Value()); }
    /// The same, unsigned.
    std::uint64_t uint64Value() const;
    /// The number in single precision.
    float floatValue() const;

    /// The number as it is held.
    const std::variant<std::int64_t, std::uint64_t, float>& held() const { return held_; }
    friend bool operator==(const Number&, const Number&) = default;

private:
    std::variant<std::int64_t, std::uint64_t, float> held_;
};

/// What a value can be, and nothing where it is absent.
using ValueVariant =
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Bytes,
                 Date, Color, Number, Picture, Matrix, VexQTAtom*>;

/// Any property's value; std::monostate where it is absent.
///
/// An unsigned property gives std::uint64_t, a signed one std::int64_t, a floating one double,
/// whatever its width. Integers compare by what they count, not by their type.
class VEXQT_EXPORT Value : public ValueVariant {
public:
    Value() = default;
    /// A boolean.
    template <std::same_as<bool> T>  // No pointer is taken for one.
    Value(T flag) : ValueVariant(flag) {}
    /// An unsigned integer.
    template <std::unsigned_integral T>
    requires(!std::same_as<T, bool>) Value(T number) : ValueVariant(std::uint64_t{number}) {}
    /// A signed integer.
    template <std::signed_integral T>
    Value(T number) : ValueVariant(std::int64_t{number}) {}
    /// A double.
    template <std::floating_point T>
    Value(T number) : ValueVariant(static_cast<double>(number)) {}
    /// A text in UTF-8.
    Value(std::string text) : ValueVariant(std::move(text)) {}
    /// The same.
    Value(std::string_view text) : ValueVariant(std::string(text)) {}
    /// The same; not null.
    Value(const char* text) : ValueVariant(std::string(text)) {}
    /// Bytes.
    Value(Bytes bytes) : ValueVariant(std::move(bytes)) {}
    /// A point in time.
    Value(Date date) : ValueVariant(date) {}
    /// A colour.
    Value(Color color) : ValueVariant(color) {}
    /// A tagged number.
    Value(Number number) : ValueVariant(number) {}
    /// A picture.
    Value(Picture picture) : ValueVariant(std::move(picture)) {}
    /// A matrix in file order.
    Value(const Matrix& matrix) : ValueVariant(matrix) {}
    /// An atom of the tree, not owned.
    Value(VexQTAtom* atom) : ValueVariant(atom) {}
    /// What the optional holds, or an absent value.
    template <class T>
    Value(std::optional<T> value) {
        if (value) *this = Value(*std::move(value));
    }

    /// Whether there is no value.
    bool isAbsent() const { return std::holds_alternative<std::monostate>(*this); }
};

VEXQT_EXPORT bool operator==(const Value& left, const Value& right);

/// The value as an integer of 64 bits, two's complement; absent where it is no number. A fraction
/// is cut off.
VEXQT_EXPORT std::optional<std::uint64_t> integerFrom(const Value& value);
/// The value as a double; absent where it is no number.
VEXQT_EXPORT std::optional<double> doubleFrom(const Value& value);

}  // namespace vexqt

#pragma once

#include <array>
#include <cstddef>

#include "vexqt/export.h"

namespace vexqt {

/// A calibrated red-green-blue-alpha colour or a grey-level one; components lie between 0 and 1.
///
/// The two kinds are kept apart: black as a grey level has no red, and is not equal to black as
/// red, green and blue. Asking a colour for a component of the other kind is a ColorSpaceError.
class VEXQT_EXPORT Color {
public:
    /// A calibrated colour.
    static constexpr Color rgb(double red, double green, double blue, double alpha = 1.0) {
        return {Kind::RGB, {red, green, blue}, alpha};
    }
    /// A grey level: 0 is black, 1 white.
    static constexpr Color grey(double white, double alpha = 1.0) {
        return {Kind::Grey, {white, white, white}, alpha};
    }

    /// Whether it is a grey level.
    bool isGrey() const { return kind_ == Kind::Grey; }
    /// \throws ColorSpaceError for a grey level.
    double red() const { return component(Kind::RGB, 0); }
    /// \throws ColorSpaceError for a grey level.
    double green() const { return component(Kind::RGB, 1); }
    /// \throws ColorSpaceError for a grey level.
    double blue() const { return component(Kind::RGB, 2); }
    /// \throws ColorSpaceError for a colour that is no grey level.
    double white() const { return component(Kind::Grey, 0); }
    /// 0 is transparent, 1 opaque.
    double alpha() const { return alpha_; }

    bool operator==(const Color&) const = default;

private:
    enum class Kind { RGB, Grey };

    constexpr Color(Kind kind, std::array<double, 3> components, double alpha)
        : kind_(kind), components_(components), alpha_(alpha) {}
    double component(Kind wanted, std::size_t index) const;

    Kind kind_;
    std::array<double, 3> components_;
    double alpha_;
};

}  // namespace vexqt

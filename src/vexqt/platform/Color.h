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
    static constexpr Color rgb(double red, double green, double blue, double alpha = 1.0) {
        return {Kind::RGB, {red, green, blue}, alpha};
    }
    static constexpr Color grey(double white, double alpha = 1.0) {
        return {Kind::Grey, {white, white, white}, alpha};
    }

    bool isGrey() const { return kind_ == Kind::Grey; }
    double red() const { return component(Kind::RGB, 0); }
    double green() const { return component(Kind::RGB, 1); }
    double blue() const { return component(Kind::RGB, 2); }
    double white() const { return component(Kind::Grey, 0); }
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

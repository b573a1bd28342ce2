#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The clean aperture: the part of the picture that is free of artefacts of its edges, as
/// fractions of pixels.
///
/// The offsets of its centre from the picture's are kept unsigned too: negative ones wrap.
class VEXQT_EXPORT VexQTclapAtom final : public AtomOf<VexQTclapAtom> {
public:
    static const AtomClass kClass;

    VexQTclapAtom() { setAtomSize(40); }

    /// The width of the aperture in pixels: numerator.
    std::uint32_t apertureWidth_N() const { return apertureWidth_N_; }
    void setApertureWidth_N(std::uint32_t numerator) { apertureWidth_N_ = numerator; }
    /// Its denominator; not checked for 0.
    std::uint32_t apertureWidth_D() const { return apertureWidth_D_; }
    void setApertureWidth_D(std::uint32_t denominator) { apertureWidth_D_ = denominator; }
    /// The height of the aperture in pixels: numerator.
    std::uint32_t apertureHeight_N() const { return apertureHeight_N_; }
    void setApertureHeight_N(std::uint32_t numerator) { apertureHeight_N_ = numerator; }
    /// Its denominator.
    std::uint32_t apertureHeight_D() const { return apertureHeight_D_; }
    void setApertureHeight_D(std::uint32_t denominator) { apertureHeight_D_ = denominator; }
    /// How far its centre lies to the right of the picture's, in pixels: numerator.
    std::uint32_t horizOff_N() const { return horizOff_N_; }
    void setHorizOff_N(std::uint32_t numerator) { horizOff_N_ = numerator; }
    /// Its denominator.
    std::uint32_t horizOff_D() const { return horizOff_D_; }
    void setHorizOff_D(std::uint32_t denominator) { horizOff_D_ = denominator; }
    /// How far its centre lies below the picture's, in pixels: numerator.
    std::uint32_t vertOff_N() const { return vertOff_N_; }
    void setVertOff_N(std::uint32_t numerator) { vertOff_N_ = numerator; }
    /// Its denominator.
    std::uint32_t vertOff_D() const { return vertOff_D_; }
    void setVertOff_D(std::uint32_t denominator) { vertOff_D_ = denominator; }

private:
    struct Layout;

    std::uint32_t apertureWidth_N_ = 0;
    std::uint32_t apertureWidth_D_ = 0;
    std::uint32_t apertureHeight_N_ = 0;
    std::uint32_t apertureHeight_D_ = 0;
    std::uint32_t horizOff_N_ = 0;
    std::uint32_t horizOff_D_ = 0;
    std::uint32_t vertOff_N_ = 0;
    std::uint32_t vertOff_D_ = 0;
};

}  // namespace vexqt

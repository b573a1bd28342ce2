#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The video media information header: how a video track is drawn over what lies behind it.
class VEXQT_EXPORT VexQTvmhdAtom final : public AtomOf<VexQTvmhdAtom> {
public:
    static const AtomClass kClass;

    /// The transfer mode; 0 copies.
    std::uint16_t graphicsMode() const { return graphicsMode_; }
    void setGraphicsMode(std::uint16_t mode) { graphicsMode_ = mode; }
    /// The red of the colour that the transfer mode works with.
    std::uint16_t opColor0() const { return opColor0_; }
    void setOpColor0(std::uint16_t red) { opColor0_ = red; }
    /// Its green.
    std::uint16_t opColor1() const { return opColor1_; }
    void setOpColor1(std::uint16_t green) { opColor1_ = green; }
    /// Its blue.
    std::uint16_t opColor2() const { return opColor2_; }
    void setOpColor2(std::uint16_t blue) { opColor2_ = blue; }

private:
    struct Layout;

    std::uint16_t graphicsMode_ = 0;
    std::uint16_t opColor0_ = 0;
    std::uint16_t opColor1_ = 0;
    std::uint16_t opColor2_ = 0;
};

}  // namespace vexqt

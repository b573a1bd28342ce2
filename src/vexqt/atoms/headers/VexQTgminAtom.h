#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The base media information: how a media that is neither video nor sound is drawn and heard.
class VEXQT_EXPORT VexQTgminAtom final : public AtomOf<VexQTgminAtom> {
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
    /// The field divided by 65536, not by 256: one whole side, 0x0100, reads as 0.00390625.
    double balance() const { return balance_; }
    void setBalance(double balance) { balance_ = balance; }

private:
    struct Layout;

    std::uint16_t graphicsMode_ = 0;
    std::uint16_t opColor0_ = 0;
    std::uint16_t opColor1_ = 0;
    std::uint16_t opColor2_ = 0;
    double balance_ = 1;
};

}  // namespace vexqt

#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The shape of a pixel: its width to its height.
class VEXQT_EXPORT VexQTpaspAtom final : public AtomOf<VexQTpaspAtom> {
public:
    static const AtomClass kClass;

    /// The width of a pixel, in any unit.
    std::uint32_t hSpacing() const { return hSpacing_; }
    void setHSpacing(std::uint32_t spacing) { hSpacing_ = spacing; }
    /// Its height, in the same unit.
    std::uint32_t vSpacing() const { return vSpacing_; }
    void setVSpacing(std::uint32_t spacing) { vSpacing_ = spacing; }

private:
    struct Layout;

    std::uint32_t hSpacing_ = 0;
    std::uint32_t vSpacing_ = 0;
};

}  // namespace vexqt

#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The file type: the brands that a file claims. Its major brand decides whether it is accepted.
class VEXQT_EXPORT VexQTftypAtom final : public AtomOf<VexQTftypAtom> {
public:
    static const AtomClass kClass;

    /// A four-character code; "qt  " for one made in memory.
    OSType majorBrand() const { return majorBrand_; }
    void setMajorBrand(OSType brand) { majorBrand_ = brand; }
    /// The version of the major brand, as its owner counts.
    std::uint32_t minorVersion() const { return minorVersion_; }
    void setMinorVersion(std::uint32_t version) { minorVersion_ = version; }
    /// Four-character codes, each held as a signed number; "qt  " and three zeros for one made in
    /// memory.
    const std::vector<std::int32_t>& compatibleBrands() const { return compatibleBrands_; }
    std::vector<std::int32_t>& compatibleBrands() { return compatibleBrands_; }
    void setCompatibleBrands(std::vector<std::int32_t> brands) {
        compatibleBrands_ = std::move(brands);
    }

private:
    struct Layout;
    void decodeBrands(AtomReader& in);
    void encodeBrands(ByteWriter& out) const;

    OSType majorBrand_ = "qt  "_os;
    std::uint32_t minorVersion_ = 0x00030520;
    std::vector<std::int32_t> compatibleBrands_ = {"qt  "_os, 0, 0, 0};
};

}  // namespace vexqt

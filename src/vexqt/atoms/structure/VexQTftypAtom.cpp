#include "vexqt/atoms/structure/VexQTftypAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/list.h"

namespace vexqt {

struct VexQTftypAtom::Layout {
    using Atom = VexQTftypAtom;
    static constexpr Field fields[] = {
        field<&Atom::majorBrand_, Code>("majorBrand"),
        field<&Atom::minorVersion_, Hex<U32>>("minorVersion"),
        irregular<&Atom::decodeBrands, &Atom::encodeBrands>(),
        numberList<&Atom::compatibleBrands_, Display::Code>("compatibleBrands"),
    };
};

/// As many brands as fit; up to three bytes behind them are lost.
void VexQTftypAtom::decodeBrands(AtomReader& in) {
    compatibleBrands_.clear();
    compatibleBrands_.reserve(in.remaining() / sizeof(std::int32_t));
    while (in.remaining() >= sizeof(std::int32_t))
        compatibleBrands_.push_back(Signed<std::int32_t>::read(in));
    in.rest();
}

void VexQTftypAtom::encodeBrands(ByteWriter& out) const {
    for (const std::int32_t brand : compatibleBrands_) Signed<std::int32_t>::write(out, brand);
}

constinit const AtomClass VexQTftypAtom::kClass = {
    .type = "ftyp"_os,
    .className = "VexQTftypAtom",
    .atomName = "File Type",
    .nibName = "VexQTftypAtom",
    .sizeRule = SizeRule::NotStored,
    .fields = Layout::fields,
    .create = create<VexQTftypAtom>,
};

}  // namespace vexqt

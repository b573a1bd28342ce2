#include "vexqt/atoms/headers/VexQTpaspAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

struct VexQTpaspAtom::Layout {
    using Atom = VexQTpaspAtom;
    static constexpr Field fields[] = {
        field<&Atom::hSpacing_, U32>("hSpacing"),
        field<&Atom::vSpacing_, U32>("vSpacing"),
    };
    static_assert(wireWidth(fields) == 8, "16 bytes less the header");
};

constinit const AtomClass VexQTpaspAtom::kClass = {
    .type = "pasp"_os,
    .className = "VexQTpaspAtom",
    .atomName = "Pixel Aspect Ratio",
    .nibName = "VexQTpaspAtom",
    .accepts = exactly(16),
    .fields = Layout::fields,
    .create = create<VexQTpaspAtom>,
};

}  // namespace vexqt

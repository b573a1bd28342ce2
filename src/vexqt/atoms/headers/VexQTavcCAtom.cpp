#include "vexqt/atoms/headers/VexQTavcCAtom.h"

namespace vexqt {

struct VexQTavcCAtom::Layout {
    using Atom = VexQTavcCAtom;
    static constexpr Field fields[] = {
        irregular<&Atom::keepRest, &Atom::appendRest>(),
    };
};

constinit const AtomClass VexQTavcCAtom::kClass = {
    .type = "avcC"_os,
    .className = "VexQTavcCAtom",
    .atomName = "avcC Extension",
    .nibName = "VexQTavcCAtom",
    .accepts = atLeast(8),
    .fields = Layout::fields,
    .create = create<VexQTavcCAtom>,
};

}  // namespace vexqt

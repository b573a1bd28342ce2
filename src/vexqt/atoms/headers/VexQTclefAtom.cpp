#include "vexqt/atoms/headers/VexQTclefAtom.h"

namespace vexqt {

constinit const AtomClass VexQTclefAtom::kClass = {
    .type = "clef"_os,
    .className = "VexQTclefAtom",
    .atomName = "Track Clean Aperture Dimensions",
    .nibName = "VexQTclefAtom",
    .accepts = exactly(20),
    .fields = kFieldsWithoutFlags,
    .create = create<VexQTclefAtom>,
};

}  // namespace vexqt

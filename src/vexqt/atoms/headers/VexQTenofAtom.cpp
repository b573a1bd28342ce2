#include "vexqt/atoms/headers/VexQTenofAtom.h"

namespace vexqt {

constinit const AtomClass VexQTenofAtom::kClass = {
    .type = "enof"_os,
    .className = "VexQTenofAtom",
    .atomName = "Track Encoded Pixel Dimensions",
    .nibName = "VexQTenofAtom",
    .accepts = exactly(20),
    .fields = kFields,
    .create = create<VexQTenofAtom>,
};

}  // namespace vexqt

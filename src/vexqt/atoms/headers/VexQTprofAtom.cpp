#include "vexqt/atoms/headers/VexQTprofAtom.h"

namespace vexqt {

constinit const AtomClass VexQTprofAtom::kClass = {
    .type = "prof"_os,
    .className = "VexQTprofAtom",
    .atomName = "Track Production Aperture Dimensions",
    .nibName = "VexQTprofAtom",
    .accepts = exactly(20),
    .fields = kFields,
    .create = create<VexQTprofAtom>,
};

}  // namespace vexqt

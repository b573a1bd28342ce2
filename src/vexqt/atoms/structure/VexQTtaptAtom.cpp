#include "vexqt/atoms/structure/VexQTtaptAtom.h"

namespace vexqt {

constinit const AtomClass VexQTtaptAtom::kClass = {
    .type = "tapt"_os,
    .className = "VexQTtaptAtom",
    .atomName = "Track Aperture Mode Dimensions",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTtaptAtom>,
};

}  // namespace vexqt

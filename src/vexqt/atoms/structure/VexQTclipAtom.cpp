#include "vexqt/atoms/structure/VexQTclipAtom.h"

namespace vexqt {

constinit const AtomClass VexQTclipAtom::kClass = {
    .type = "clip"_os,
    .className = "VexQTclipAtom",
    .atomName = "Movie Clipping",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTclipAtom>,
};

}  // namespace vexqt

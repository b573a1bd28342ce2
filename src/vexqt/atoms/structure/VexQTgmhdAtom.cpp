#include "vexqt/atoms/structure/VexQTgmhdAtom.h"

namespace vexqt {

constinit const AtomClass VexQTgmhdAtom::kClass = {
    .type = "gmhd"_os,
    .className = "VexQTgmhdAtom",
    .atomName = "Base Media Information Header",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTgmhdAtom>,
};

}  // namespace vexqt

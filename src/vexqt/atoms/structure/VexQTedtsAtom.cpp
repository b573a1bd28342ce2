#include "vexqt/atoms/structure/VexQTedtsAtom.h"

namespace vexqt {

constinit const AtomClass VexQTedtsAtom::kClass = {
    .type = "edts"_os,
    .className = "VexQTedtsAtom",
    .atomName = "Edits",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTedtsAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/structure/VexQTstblAtom.h"

namespace vexqt {

constinit const AtomClass VexQTstblAtom::kClass = {
    .type = "stbl"_os,
    .className = "VexQTstblAtom",
    .atomName = "Sample Table",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTstblAtom>,
};

}  // namespace vexqt

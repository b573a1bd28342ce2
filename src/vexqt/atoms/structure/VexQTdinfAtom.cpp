#include "vexqt/atoms/structure/VexQTdinfAtom.h"

namespace vexqt {

constinit const AtomClass VexQTdinfAtom::kClass = {
    .type = "dinf"_os,
    .className = "VexQTdinfAtom",
    .atomName = "Data Information",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTdinfAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/structure/VexQTschiAtom.h"

namespace vexqt {

constinit const AtomClass VexQTschiAtom::kClass = {
    .type = "schi"_os,
    .className = "VexQTschiAtom",
    .atomName = "'schi' Atom",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .create = create<VexQTschiAtom>,
};

}  // namespace vexqt

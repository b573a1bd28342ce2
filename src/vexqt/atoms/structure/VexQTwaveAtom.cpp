#include "vexqt/atoms/structure/VexQTwaveAtom.h"

namespace vexqt {

constinit const AtomClass VexQTwaveAtom::kClass = {
    .type = "wave"_os,
    .className = "VexQTwaveAtom",
    .atomName = "Wave Extension",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .bareLastChild = BareLastChild::IsRead,
    .create = create<VexQTwaveAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/structure/VexQTwaveAtom.h"

#include "vexqt/atoms/headers/VexQTendaAtom.h"
#include "vexqt/atoms/headers/VexQTfrmaAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTfrmaAtom::kClass},
    {.cls = &VexQTendaAtom::kClass},
};

constinit const AtomClass VexQTwaveAtom::kClass = {
    .type = "wave"_os,
    .className = "VexQTwaveAtom",
    .atomName = "Wave Extension",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .bareLastChild = BareLastChild::IsRead,
    .create = create<VexQTwaveAtom>,
};

}  // namespace vexqt

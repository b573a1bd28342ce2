#include "vexqt/atoms/headers/VexQTtmcdAtom.h"

#include "vexqt/atoms/headers/VexQTtcmiAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTtcmiAtom::kClass},
};

constinit const AtomClass VexQTtmcdAtom::kClass = {
    .type = "tmcd"_os,
    .className = "VexQTtmcdAtom",
    .atomName = "Timecode",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .zeroExtendedSizeReachesEnd = false,
    .create = create<VexQTtmcdAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/structure/VexQTstblAtom.h"

#include "vexqt/atoms/headers/VexQTcslgAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTstsdAtom::kClass},
    {.cls = &VexQTcslgAtom::kClass},
};

constinit const AtomClass VexQTstblAtom::kClass = {
    .type = "stbl"_os,
    .className = "VexQTstblAtom",
    .atomName = "Sample Table",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTstblAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/structure/VexQTgmhdAtom.h"

#include "vexqt/atoms/headers/VexQTgminAtom.h"
#include "vexqt/atoms/headers/VexQTtextAtom.h"
#include "vexqt/atoms/headers/VexQTtmcdAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTgminAtom::kClass},
    {.cls = &VexQTtextAtom::kClass},
    {.cls = &VexQTtmcdAtom::kClass},
};

constinit const AtomClass VexQTgmhdAtom::kClass = {
    .type = "gmhd"_os,
    .className = "VexQTgmhdAtom",
    .atomName = "Base Media Information Header",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTgmhdAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/structure/VexQTclipAtom.h"

#include "vexqt/atoms/headers/VexQTcrgnAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTcrgnAtom::kClass},
};

constinit const AtomClass VexQTclipAtom::kClass = {
    .type = "clip"_os,
    .className = "VexQTclipAtom",
    .atomName = "Movie Clipping",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTclipAtom>,
};

}  // namespace vexqt

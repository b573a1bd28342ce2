#include "vexqt/atoms/structure/VexQTedtsAtom.h"

#include "vexqt/atoms/sampletables/VexQTelstAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTelstAtom::kClass},
};

constinit const AtomClass VexQTedtsAtom::kClass = {
    .type = "edts"_os,
    .className = "VexQTedtsAtom",
    .atomName = "Edits",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTedtsAtom>,
};

}  // namespace vexqt

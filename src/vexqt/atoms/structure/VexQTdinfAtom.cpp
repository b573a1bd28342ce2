#include "vexqt/atoms/structure/VexQTdinfAtom.h"

#include "vexqt/atoms/sampletables/VexQTdrefAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTdrefAtom::kClass},
};

constinit const AtomClass VexQTdinfAtom::kClass = {
    .type = "dinf"_os,
    .className = "VexQTdinfAtom",
    .atomName = "Data Information",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTdinfAtom>,
};

}  // namespace vexqt

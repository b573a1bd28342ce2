#include "vexqt/atoms/structure/VexQTsinfAtom.h"

#include "vexqt/atoms/headers/VexQTfrmaAtom.h"
#include "vexqt/atoms/headers/VexQTschmAtom.h"
#include "vexqt/atoms/structure/VexQTschiAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTfrmaAtom::kClass},
    {.cls = &VexQTschmAtom::kClass},
    {.cls = &VexQTschiAtom::kClass},
};

constinit const AtomClass VexQTsinfAtom::kClass = {
    .type = "sinf"_os,
    .className = "VexQTsinfAtom",
    .atomName = "'sinf' Atom",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTsinfAtom>,
};

}  // namespace vexqt

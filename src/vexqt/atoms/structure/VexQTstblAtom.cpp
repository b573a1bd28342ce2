#include "vexqt/atoms/structure/VexQTstblAtom.h"

#include "vexqt/atoms/headers/VexQTcslgAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/sampletables/VexQTco64Atom.h"
#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"
#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"
#include "vexqt/atoms/sampletables/VexQTstpsAtom.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/atoms/sampletables/VexQTstssAtom.h"
#include "vexqt/atoms/sampletables/VexQTstszAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTstsdAtom::kClass}, {.cls = &VexQTsttsAtom::kClass},
    {.cls = &VexQTcttsAtom::kClass}, {.cls = &VexQTcslgAtom::kClass},
    {.cls = &VexQTstssAtom::kClass}, {.cls = &VexQTstpsAtom::kClass},
    {.cls = &VexQTstscAtom::kClass}, {.cls = &VexQTstszAtom::kClass},
    {.cls = &VexQTstcoAtom::kClass}, {.cls = &VexQTco64Atom::kClass},
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

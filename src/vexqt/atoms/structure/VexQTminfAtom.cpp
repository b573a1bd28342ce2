#include "vexqt/atoms/structure/VexQTminfAtom.h"

#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/headers/VexQTsmhdAtom.h"
#include "vexqt/atoms/headers/VexQTvmhdAtom.h"
#include "vexqt/atoms/structure/VexQTdinfAtom.h"
#include "vexqt/atoms/structure/VexQTgmhdAtom.h"
#include "vexqt/atoms/structure/VexQTstblAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTvmhdAtom::kClass}, {.cls = &VexQTsmhdAtom::kClass},
    {.cls = &VexQTgmhdAtom::kClass}, {.cls = &VexQThdlrAtom::kClass},
    {.cls = &VexQTdinfAtom::kClass}, {.cls = &VexQTstblAtom::kClass},
};

constinit const AtomClass VexQTminfAtom::kClass = {
    .type = "minf"_os,
    .className = "VexQTminfAtom",
    .atomName = "Media Information",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTminfAtom>,
};

}  // namespace vexqt

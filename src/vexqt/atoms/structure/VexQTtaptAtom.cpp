#include "vexqt/atoms/structure/VexQTtaptAtom.h"

#include "vexqt/atoms/headers/VexQTclefAtom.h"
#include "vexqt/atoms/headers/VexQTenofAtom.h"
#include "vexqt/atoms/headers/VexQTprofAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTclefAtom::kClass},
    {.cls = &VexQTprofAtom::kClass},
    {.cls = &VexQTenofAtom::kClass},
};

constinit const AtomClass VexQTtaptAtom::kClass = {
    .type = "tapt"_os,
    .className = "VexQTtaptAtom",
    .atomName = "Track Aperture Mode Dimensions",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTtaptAtom>,
};

}  // namespace vexqt

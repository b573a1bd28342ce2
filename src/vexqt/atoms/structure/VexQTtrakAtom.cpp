#include "vexqt/atoms/structure/VexQTtrakAtom.h"

#include "vexqt/atoms/headers/VexQTtkhdAtom.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"
#include "vexqt/atoms/structure/VexQTclipAtom.h"
#include "vexqt/atoms/structure/VexQTedtsAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/atoms/structure/VexQTtaptAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTtkhdAtom::kClass},
    {.cls = &VexQTedtsAtom::kClass},
    {.cls = &VexQTmdiaAtom::kClass},
    {.cls = &VexQTmetaAtom::kClass},
    {.cls = &VexQTtaptAtom::kClass},
    {.cls = &VexQTclipAtom::kClass},
    {.cls = &VexQTudtaAtom::kClass, .minimumSize = 16},
    {.cls = nullptr, .type = "prfl"_os},  // A profile is lost.
};

constinit const AtomClass VexQTtrakAtom::kClass = {
    .type = "trak"_os,
    .className = "VexQTtrakAtom",
    .atomName = "Track",
    .header = HeaderRule::Read,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTtrakAtom>,
};

}  // namespace vexqt

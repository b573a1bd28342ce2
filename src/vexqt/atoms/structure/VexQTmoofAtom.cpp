#include "vexqt/atoms/structure/VexQTmoofAtom.h"

#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTmvhdAtom::kClass},
    {.cls = &VexQTtrakAtom::kClass},
    {.cls = &VexQTudtaAtom::kClass},
    {.cls = &VexQTmetaAtom::kClass},
};

struct VexQTmoofAtom::Layout {
    static constexpr Field fields[] = {
        childAtoms,
        property<&VexQTmoofAtom::originalSize_>("originalSize").in("bytes"),
    };
};

constinit const AtomClass VexQTmoofAtom::kClass = {
    .type = "moof"_os,
    .className = "VexQTmoofAtom",
    .atomName = "Movie Segment",
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = Layout::fields,
    .children = kChildren,
    .create = create<VexQTmoofAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/metadata/VexQTMetadataItem.h"

#include "vexqt/atoms/metadata/VexQTdataAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {{.cls = &VexQTdataAtom::kClass}};

constinit const AtomClass VexQTMetadataItem::kClass = {
    .type = kAnyType,
    .className = "VexQTMetadataItem",
    .atomName = "Metadata Item",
    .header = HeaderRule::ReadZeroLeavesEight,
    .typeRule = TypeRule::AsHeld,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTMetadataItem>,
};

std::string VexQTMetadataItem::atomTypeString() const {
    static constexpr OSType kHighestKey = 0xFFFFFF;
    return atomType() > kHighestKey ? VexQTAtom::atomTypeString() : std::to_string(atomType());
}

}  // namespace vexqt

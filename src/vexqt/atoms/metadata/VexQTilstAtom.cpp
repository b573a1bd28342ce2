#include "vexqt/atoms/metadata/VexQTilstAtom.h"

#include "vexqt/atoms/metadata/VexQTMetadataItem.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {{.cls = &VexQTMetadataItem::kClass}};

constinit const AtomClass VexQTilstAtom::kClass = {
    .type = "ilst"_os,
    .className = "VexQTilstAtom",
    .atomName = "Metadata Item List",
    .header = HeaderRule::ReadExtendedPlusOne,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .bareLastChild = BareLastChild::IsRead,
    .create = create<VexQTilstAtom>,
};

}  // namespace vexqt

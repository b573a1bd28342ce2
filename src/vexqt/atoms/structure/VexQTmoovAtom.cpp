#include "vexqt/atoms/structure/VexQTmoovAtom.h"

#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"
#include "vexqt/atoms/metadata/VexQTudtaAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/atoms/structure/VexQTtrakAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTmvhdAtom::kClass},
    {.cls = &VexQTtrakAtom::kClass},
    {.cls = &VexQTudtaAtom::kClass},
    {.cls = &VexQTmetaAtom::kClass},
};

struct VexQTmoovAtom::Layout {
    static constexpr Field fields[] = {
        childAtoms,
        property<&VexQTmoovAtom::originalSize_>("originalSize").in("bytes"),
    };
};

constinit const AtomClass VexQTmoovAtom::kClass = {
    .type = "moov"_os,
    .className = "VexQTmoovAtom",
    .atomName = "Movie",
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = Layout::fields,
    .children = kChildren,
    .create = create<VexQTmoovAtom>,
};

std::vector<VexQTtrakAtom*> VexQTmoovAtom::allTrackAtoms() const {
    std::vector<VexQTtrakAtom*> tracks;
    for (const auto& child : children()) {
        auto* track = dynamic_cast<VexQTtrakAtom*>(child.get());
        if (track != nullptr && track->atomType() == "trak"_os) tracks.push_back(track);
    }
    return tracks;
}

VexQTtrakAtom* VexQTmoovAtom::trackAtomForMediaType(OSType mediaType, std::uint32_t index) const {
    std::uint32_t count = 0;
    for (VexQTtrakAtom* track : allTrackAtoms()) {
        const auto* media = dynamic_cast<const VexQTmdiaAtom*>(track->childWithType("mdia"_os));
        if (media == nullptr || media->mediaType() != mediaType) continue;
        if (count == index) return track;
        ++count;
    }
    return nullptr;
}

}  // namespace vexqt

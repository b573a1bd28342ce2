#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"

#include "vexqt/atoms/sampledescriptions/VexQTclcpSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTmetaSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTsbtlSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTtmcdSampleDescription.h"
#include "vexqt/atoms/sampledescriptions/VexQTvideSampleDescription.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/core/ChildMaker.h"
#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

namespace {

/// The classes of entries. Every other media's are of the base.
struct EntryClass {
    OSType mediaType;
    const AtomClass* cls;
};
constexpr EntryClass kEntryClasses[] = {
    {"vide"_os, &VexQTvideSampleDescription::kClass},
    {"soun"_os, &VexQTsounSampleDescription::kClass},
    {"tmcd"_os, &VexQTtmcdSampleDescription::kClass},
    {"sbtl"_os, &VexQTsbtlSampleDescription::kClass},
    {"clcp"_os, &VexQTclcpSampleDescription::kClass},
    {"meta"_os, &VexQTmetaSampleDescription::kClass},
};

const AtomClass& entryClassOf(OSType mediaType) {
    const auto* found = std::ranges::find(kEntryClasses, mediaType, &EntryClass::mediaType);
    return found != std::end(kEntryClasses) ? *found->cls : VexQTSampleDescription::kClass;
}

}  // namespace

struct VexQTstsdAtom::Layout {
    using Atom = VexQTstsdAtom;
    static void findMediaType(Record& record, AtomReader&) {
        auto& atom = static_cast<Atom&>(record);
        for (const VexQTAtom* above = atom.parent(); above; above = above->parent())
            if (const auto* media = dynamic_cast<const VexQTmdiaAtom*>(above)) {
                atom.mediaType_ = media->mediaType();
                return;
            }
    }
    static constexpr Field fields[] = {
        {.decode = findMediaType},
        versionKept,
        flagsKept,
        irregular<&Atom::decodeEntries, &Atom::encodeEntries>().holdingChildren(),
        property<&Atom::mediaType_>("mediaType").as(Display::Code),
    };
};

/// An entry that is not there ends the reading: the count is not taken for a bound.
void VexQTstsdAtom::decodeEntries(AtomReader& in) {
    const AtomClass& cls = entryClassOf(mediaType_);
    ChildMaker maker(*this, in);
    for (std::uint32_t count = in.u32(); count > 0; --count) {
        ByteReader ahead = in;
        const std::uint32_t size = ahead.u32();
        const OSType format = ahead.u32();
        ahead.skip(8);  // Every entry has a data reference, also where its class does not read it.
        maker.add(&cls, format, size,
                  {.parent = this, .lineWhenNone = "newSampleDescription == nil"});
    }
    in.rest();
}

void VexQTstsdAtom::encodeEntries(ByteWriter& out) const {
    out.u32(static_cast<std::uint32_t>(children().size()));
    appendChildren(*this, out);
}

constinit const AtomClass VexQTstsdAtom::kClass = {
    .type = "stsd"_os,
    .className = "VexQTstsdAtom",
    .atomName = "Sample Description",
    .nibName = "VexQTstsdAtom",
    .accepts = atLeast(16),
    .fields = Layout::fields,
    .create = create<VexQTstsdAtom>,
};

}  // namespace vexqt

#include "vexqt/atoms/sampledescriptions/VexQTsbtlSampleDescription.h"

#include "vexqt/atoms/sampledescriptions/VexQTtx3gAtom.h"
#include "vexqt/atoms/sampledescriptions/entry_rows.h"

namespace vexqt {

struct VexQTsbtlSampleDescription::Layout {
    using Atom = VexQTsbtlSampleDescription;
    static void readAhead(Record& record, AtomReader& in) {
        static_cast<Atom&>(record).readSizeAndFormatAhead(in);
    }
    static constexpr Field fields[] = {
        {.decode = readAhead},         childAtoms,
        notInFile(CommonRows::format), notInFile(CommonRows::dataReference),
        notInFile(CommonRows::size),   property<&Atom::reserved1_>("reserved1"),
    };
};

/// The first child begins with the same bytes.
void VexQTsbtlSampleDescription::readSizeAndFormatAhead(AtomReader& in) {
    ByteReader ahead = in;
    setSampleDescriptionSize(ahead.u32());
    setDataFormat(ahead.u32());
}

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTtx3gAtom::kClass},
};

constinit const AtomClass VexQTsbtlSampleDescription::kClass = {
    .type = "sbtl"_os,
    .className = "VexQTsbtlSampleDescription",
    .atomName = "Subtitle Sample Description",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::None,
    .fields = Layout::fields,
    .children = kChildren,
    .zeroExtendedSizeReachesEnd = false,
    .create = create<VexQTsbtlSampleDescription>,
};

}  // namespace vexqt

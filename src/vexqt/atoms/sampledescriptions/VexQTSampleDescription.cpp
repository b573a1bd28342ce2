#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

#include "vexqt/atoms/sampledescriptions/entry_rows.h"
#include "vexqt/core/ChildMaker.h"

namespace vexqt {

struct VexQTSampleDescription::Layout {
    using Atom = VexQTSampleDescription;

    static void takeFormatForType(Record& record, AtomReader&) {
        auto& entry = static_cast<Atom&>(record);
        entry.setAtomType(entry.dataFormat_);
    }
    static constexpr auto fields = entryRows(Field{.decode = takeFormatForType},
                                             irregular<&Atom::keepRest, &Atom::appendRest>());
    static_assert(wireWidth(fields) == 16, "the media's own bytes follow");
    static constexpr auto listing = entryListing<fields>();
};

constinit const AtomClass VexQTSampleDescription::kClass = {
    .type = kAnyType,
    .className = "VexQTSampleDescription",
    .atomName = "Generic Atom",
    .nibName = "VexQTAtom",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::InRows,
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .listing = Layout::listing,
    .create = create<VexQTSampleDescription>,
};

VexQTSampleDescription::VexQTSampleDescription(OSType dataFormat)
    : ContainerAtom(kClass), dataFormat_(dataFormat) {
    setAtomType(dataFormat);
}

std::unique_ptr<VexQTSampleDescription> VexQTSampleDescription::initWithData(
    ByteView data, OSType dataFormat, VexQTAtom* parent, std::uint64_t offsetInFile) {
    auto atom = make(kClass, data, parent, offsetInFile);
    atom->setAtomType(dataFormat);
    return std::unique_ptr<VexQTSampleDescription>(
        static_cast<VexQTSampleDescription*>(atom.release()));
}

void VexQTSampleDescription::decodeExtensions(AtomReader& in, const ExtensionWalk& walk) {
    static constexpr std::uint32_t kMostSize = 65535;
    ChildMaker maker(*this, in);
    while (in.remaining() >= 8) {
        ByteReader ahead = in;
        // The field as it stands: no extension has an extended size.
        const std::uint32_t size = ahead.u32();
        const OSType type = ahead.u32();
        if (size < walk.leastSize || size > kMostSize) return;
        maker.add(classOfChild(atomClass().children, type, size), type, size,
                  {.parent = nullptr, .lineWhenNone = walk.lineWhenDeclined});
    }
}

}  // namespace vexqt

#include "vexqt/atoms/sampledescriptions/VexQTtmcdSampleDescription.h"

#include "vexqt/atoms/sampledescriptions/entry_rows.h"
#include "vexqt/platform/text.h"

namespace vexqt {

/// The record of the source's name without the name: size, type, the name's length, its language.
static constexpr std::size_t kSourceRecord = 12;

struct VexQTtmcdSampleDescription::Layout {
    using Atom = VexQTtmcdSampleDescription;
    static constexpr auto fields = entryRows(
        field<&Atom::firstFlags_, Hex<U32>>("firstFlags"),
        field<&Atom::tcFlags_, Hex<U32>>("tcFlags"),
        field<&Atom::timeScale_, U32>("timeScale").in("time units a second"),
        field<&Atom::frameDuration_, U32>("frameDuration").in("time units"),
        field<&Atom::numFrames_, U8>("numFrames").in("frames a second"), reserved<1>(),
        irregular<&Atom::decodeSource, &Atom::encodeSource>(),
        property<&Atom::languageCode_>("languageCode"), property<&Atom::sourceName_>("sourceName"));
    static_assert(wireWidth(fields) == 34, "the source follows");
    static constexpr auto listing = entryListing<fields>();
};

/// Neither the record's size nor its type is looked at, and what follows the name is lost.
void VexQTtmcdSampleDescription::decodeSource(AtomReader& in) {
    if (in.remaining() < kSourceRecord) return;
    in.skip(8);
    const std::size_t length = in.u16();
    languageCode_ = in.u16();
    sourceName_ = textFromASCII(upToZero(in.take(std::min(length, in.remaining()))));
}

/// A name that is not ASCII is written as a record without one.
void VexQTtmcdSampleDescription::encodeSource(ByteWriter& out) const {
    if (!sourceName_ || sourceName_->empty()) return;
    const Bytes name = asciiFromText(*sourceName_).value_or(Bytes());
    out.u32(static_cast<std::uint32_t>(kSourceRecord + name.size()));
    out.u32("name"_os);
    out.u16(static_cast<std::uint16_t>(name.size()));
    out.u16(languageCode_);
    out.append(name);
}

constinit const AtomClass VexQTtmcdSampleDescription::kClass = {
    .type = "tmcd"_os,
    .className = "VexQTtmcdSampleDescription",
    .atomName = "Timecode Sample Description",
    .nibName = "VexQTtmcdAtom",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::InRows,
    .fields = Layout::fields,
    .listing = Layout::listing,
    .create = create<VexQTtmcdSampleDescription>,
};

}  // namespace vexqt

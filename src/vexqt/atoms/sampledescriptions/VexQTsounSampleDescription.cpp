#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"

#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"
#include "vexqt/atoms/sampledescriptions/entry_rows.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/atoms/structure/VexQTwaveAtom.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

namespace {

/// A double of which single precision is kept.
struct Float64 {
    static constexpr std::size_t width = 8;
    static double read(ByteReader& in) { return std::bit_cast<double>(in.u64()); }
    static void write(ByteWriter& out, double value) {
        out.u64(std::bit_cast<std::uint64_t>(value));
    }
};

/// The length of the fields up to the extension atoms: always that of the fields that are written.
struct SizeWrittenAs72 {
    static constexpr std::size_t width = 4;
    static std::uint32_t read(ByteReader& in) { return in.u32(); }
    static void write(ByteWriter& out, std::uint32_t) { out.u32(72); }
};

/// A word that is the same in every entry. What a file has instead is not kept.
constexpr Field constantWord = {
    .width = 4,
    .decode = rows::skip<4>,
    .encode = [](const Record&, ByteWriter& out) { out.u32(0x7F000000); },
};

}  // namespace

struct VexQTsounSampleDescription::Layout {
    using Atom = VexQTsounSampleDescription;

    static constexpr auto fields = entryRows(
        field<&Atom::soundVersion_, U16>("soundVersion"),
        field<&Atom::revisionLevel_, U16>("revisionLevel"), field<&Atom::vendor_, Code>("vendor"),
        field<&Atom::numberOfChannels_, U16>("numberOfChannels").in("channels"),
        field<&Atom::sampleSize_, U16>("sampleSize").in("bits"),
        field<&Atom::compressionID_, U16>("compressionID"),
        field<&Atom::packetSize_, U16>("packetSize"),
        field<&Atom::sampleRate_, UnsignedFixed1616>("sampleRate").in("hertz"),

        when<&Atom::isVersion1>(field<&Atom::samplesPerPacket_, U32>("samplesPerPacket")),
        when<&Atom::isVersion1>(field<&Atom::bytesPerPacket_, U32>("bytesPerPacket").in("bytes")),
        when<&Atom::isVersion1>(field<&Atom::bytesPerFrame_, U32>("bytesPerFrame").in("bytes")),
        when<&Atom::isVersion1>(field<&Atom::bytesPerSample_, U32>("bytesPerSample").in("bytes")),

        when<&Atom::isVersion2>(
            field<&Atom::sizeOfStructOnly_, SizeWrittenAs72>("sizeOfStructOnly").in("bytes")),
        when<&Atom::isVersion2>(
            field<&Atom::audioSampleRate_, Float64>("audioSampleRate").in("hertz")),
        when<&Atom::isVersion2>(
            field<&Atom::numAudioChannels_, U32>("numAudioChannels").in("channels")),
        when<&Atom::isVersion2>(constantWord),
        when<&Atom::isVersion2>(
            field<&Atom::constBitsPerChannel_, U32>("constBitsPerChannel").in("bits")),
        when<&Atom::isVersion2>(
            field<&Atom::formatSpecificFlags_, Hex<U32>>("formatSpecificFlags")),
        when<&Atom::isVersion2>(
            field<&Atom::constBytesPerAudioPacket_, U32>("constBytesPerAudioPacket").in("bytes")),
        when<&Atom::isVersion2>(
            field<&Atom::constLPCMFramesPerAudioPacket_, U32>("constLPCMFramesPerAudioPacket")
                .in("frames")),

        childAtomsReadBy<&Atom::decodeExtensionAtoms>(),
        derived<&Atom::hideV1Fields>("hideV1Fields"), derived<&Atom::hideV2Fields>("hideV2Fields"));
    static_assert(wireWidth(fields) == 36, "the fields of versions 1 and 2 follow");
    static constexpr auto listing = entryListing<fields>();
};

/// Whatever is left over when the walk ends is lost.
void VexQTsounSampleDescription::decodeExtensionAtoms(AtomReader& in) {
    decodeExtensions(in, {.leastSize = 8, .lineWhenDeclined = {}});
    in.rest();
}

static constexpr ChildRule kExtensions[] = {
    {.cls = &VexQTwaveAtom::kClass},
    {.cls = &VexQTsinfAtom::kClass},
    {.cls = &VexQTchanAtom::kClass},
};

constinit const AtomClass VexQTsounSampleDescription::kClass = {
    .type = "soun"_os,
    .className = "VexQTsounSampleDescription",
    .atomName = "Sound Sample Description",
    .nibName = "VexQTsounAtom",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::InRows,
    .fields = Layout::fields,
    .children = kExtensions,
    .listing = Layout::listing,
    .create = create<VexQTsounSampleDescription>,
};

}  // namespace vexqt

#include "vexqt/atoms/sampledescriptions/VexQTvideSampleDescription.h"

#include "vexqt/atoms/headers/VexQTavcCAtom.h"
#include "vexqt/atoms/headers/VexQTclapAtom.h"
#include "vexqt/atoms/headers/VexQTcolrAtom.h"
#include "vexqt/atoms/headers/VexQTfielAtom.h"
#include "vexqt/atoms/headers/VexQTpaspAtom.h"
#include "vexqt/atoms/sampledescriptions/entry_rows.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/platform/text.h"

namespace vexqt {

namespace {

/// Unsigned 16.16, its fraction cut off as it is read.
struct WholeFixed1616 {
    static constexpr std::size_t width = 4;
    static constexpr NumberRange range = UnsignedFixed1616::range;
    static std::uint32_t read(ByteReader& in) {
        return static_cast<std::uint32_t>(UnsignedFixed1616::read(in));
    }
    static void write(ByteWriter& out, std::uint32_t value) {
        UnsignedFixed1616::write(out, value);
    }
};

/// A length byte, and a name in a field of 31 bytes that a writer ends with a zero byte.
struct CompressorName {
    static constexpr std::size_t fieldWidth = 31;
    static constexpr std::size_t width = 1 + fieldWidth;

    static std::optional<std::string> read(ByteReader& in) {
        const std::size_t length = std::min<std::size_t>(in.u8(), fieldWidth);
        return textFromASCII(in.take(fieldWidth).first(length));
    }
    static void write(ByteWriter& out, const std::optional<std::string>& name) {
        const Bytes bytes = asciiFromText(name.value_or("")).value_or(Bytes());
        out.u8(static_cast<std::uint8_t>(bytes.size()));
        const ByteView fitting = bytes.size() < fieldWidth ? ByteView(bytes) : ByteView();
        out.append(fitting);
        out.zeros(fieldWidth - fitting.size());
    }
};

}  // namespace

struct VexQTvideSampleDescription::Layout {
    using Atom = VexQTvideSampleDescription;

    /// A colour table of its own would be announced by these. They are not written back, so such an
    /// entry comes out shorter.
    static constexpr Field skippedBehindColorTable0 =
        when<&Atom::hasColorTable0>({.decode = rows::skip<4>});

    static constexpr auto fields = entryRows(
        field<&Atom::videoVersion_, U16>("videoVersion"),
        field<&Atom::revisionLevel_, U16>("revisionLevel"), field<&Atom::vendor_, Code>("vendor"),
        field<&Atom::temporalQuality_, U32>("temporalQuality"),
        field<&Atom::spatialQuality_, U32>("spatialQuality"),
        field<&Atom::width_, U16>("width").in("pixels"),
        field<&Atom::height_, U16>("height").in("pixels"),
        field<&Atom::horizontalResolution_, WholeFixed1616>("horizontalResolution")
            .in("pixels per inch"),
        field<&Atom::verticalResolution_, WholeFixed1616>("verticalResolution")
            .in("pixels per inch"),
        reserved<4>(),  // The data size.
        field<&Atom::frameCount_, U16>("frameCount").in("frames per sample"),
        field<&Atom::compressorName_, CompressorName>("compressorName"),
        field<&Atom::depth_, U16>("depth").in("bits per pixel"),
        field<&Atom::colorTableID_, Signed<std::int16_t>>("colorTableID"), skippedBehindColorTable0,
        childAtomsReadBy<&Atom::decodeExtensionAtoms>(),
        irregular<&Atom::decodeZeroWord, &Atom::encodeZeroWord>(),
        property<&Atom::appendZeroWord_>("appendZeroWord"));
    static_assert(wireWidth(fields) == 86, "extension atoms follow");
    static constexpr auto listing = entryListing<fields>();
};

/// A size from 1 to 7 does not end the walk: its atom's class reads past it and raises.
void VexQTvideSampleDescription::decodeExtensionAtoms(AtomReader& in) {
    decodeExtensions(in, {.leastSize = 1, .lineWhenDeclined = "newAtom == nil"});
}

/// Whatever else is left over when the walk ends is lost.
void VexQTvideSampleDescription::decodeZeroWord(AtomReader& in) {
    appendZeroWord_ = in.remaining() == 4;
    in.rest();
}

void VexQTvideSampleDescription::encodeZeroWord(ByteWriter& out) const {
    if (appendZeroWord_) out.zeros(4);
}

static constexpr ChildRule kExtensions[] = {
    {.cls = &VexQTavcCAtom::kClass}, {.cls = &VexQTclapAtom::kClass},
    {.cls = &VexQTcolrAtom::kClass}, {.cls = &VexQTfielAtom::kClass},
    {.cls = &VexQTpaspAtom::kClass}, {.cls = &VexQTsinfAtom::kClass},
};

constinit const AtomClass VexQTvideSampleDescription::kClass = {
    .type = "vide"_os,
    .className = "VexQTvideSampleDescription",
    .atomName = "Video Sample Description",
    .nibName = "VexQTvideAtom",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::InRows,
    .fields = Layout::fields,
    .children = kExtensions,
    .listing = Layout::listing,
    .create = create<VexQTvideSampleDescription>,
};

}  // namespace vexqt

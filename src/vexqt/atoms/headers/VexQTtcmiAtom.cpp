#include "vexqt/atoms/headers/VexQTtcmiAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/platform/text.h"

namespace vexqt {

namespace {

/// Red, green and blue as fractions of 65536, so a full component of 1.0 wraps and is written as 0.
struct ColorThatWraps {
    static constexpr std::size_t width = 6;
    static std::optional<Color> read(ByteReader& in) {
        const float red = component(in);
        const float green = component(in);
        const float blue = component(in);
        return Color::rgb(red, green, blue);
    }
    static void write(ByteWriter& out, const std::optional<Color>& color) {
        if (!color) return out.zeros(width);
        for (const double component : {color->red(), color->green(), color->blue()})
            out.u16(static_cast<std::uint16_t>(ValueCodecs::doubleToUnsignedFixed1616(component)));
    }

private:
    static float component(ByteReader& in) {
        return static_cast<float>(in.u16()) * (1.0F / 65536.0F);
    }
};

/// Two bytes that are a property all the same.
struct NeverReadWrittenAsZero {
    static constexpr std::size_t width = 2;
    static std::uint16_t read(ByteReader& in) {
        in.skip(width);
        return 0;
    }
    static void write(ByteWriter& out, std::uint16_t) { out.zeros(width); }
};

}  // namespace

struct VexQTtcmiAtom::Layout {
    using Atom = VexQTtcmiAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::textFont_, U16>("textFont"),
        field<&Atom::textFace_, Hex<U16>>("textFace"),
        field<&Atom::textSize_, U16>("textSize").in("points"),
        field<&Atom::reserved_, NeverReadWrittenAsZero>("reserved"),
        field<&Atom::textColor_, ColorThatWraps>("textColor"),
        field<&Atom::backgroundColor_, ColorThatWraps>("backgroundColor"),
        irregular<&Atom::decodeFontName, &Atom::encodeFontName>(),
        property<&Atom::fontName_>("fontName"),
    };
    static_assert(wireWidth(fields) == 24, "32 bytes less the header; the name follows");
};

/// A name that claims more bytes than there are is cut; what follows it is lost.
void VexQTtcmiAtom::decodeFontName(AtomReader& in) {
    const std::size_t claimed = in.u8();
    fontName_ = textFromASCII(upToZero(in.take(std::min(claimed, in.remaining()))));
}

void VexQTtcmiAtom::encodeFontName(ByteWriter& out) const {
    const Bytes name = asciiFromText(fontName_.value_or("")).value_or(Bytes());
    out.u8(static_cast<std::uint8_t>(name.size()));
    out.append(name);
}

constinit const AtomClass VexQTtcmiAtom::kClass = {
    .type = "tcmi"_os,
    .className = "VexQTtcmiAtom",
    .atomName = "Timecode Media Information",
    .nibName = "VexQTtcmiAtom",
    .accepts = atLeast(33),
    .fields = Layout::fields,
    .create = create<VexQTtcmiAtom>,
};

}  // namespace vexqt

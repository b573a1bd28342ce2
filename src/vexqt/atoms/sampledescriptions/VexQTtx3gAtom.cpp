#include "vexqt/atoms/sampledescriptions/VexQTtx3gAtom.h"

#include <cmath>

#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/core/ChildMaker.h"
#include "vexqt/core/codecs.h"

namespace vexqt {

namespace {

/// Red, green, blue and alpha, a byte each.
struct ColorInBytes {
    static constexpr std::size_t width = 4;
    static Color read(ByteReader& in) {
        const ByteView bytes = in.take(width);
        return Color::rgb(bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0);
    }
    static void write(ByteWriter& out, const Color& color) {
        for (const double component : {color.red(), color.green(), color.blue(), color.alpha()})
            out.u8(byteOf(component));
    }

private:
    static std::uint8_t byteOf(double component) {
        const double rounded = std::round(component * 255.0);
        if (!(rounded > 0)) return 0;  // Also what is no number.
        return rounded < 255.0 ? static_cast<std::uint8_t>(rounded) : std::uint8_t{255};
    }
};

/// A side of the text box: 16 bits without a sign, held in 32 with one.
struct Side {
    static constexpr std::size_t width = 2;
    static constexpr NumberRange range = {0, 65536};
    static std::int32_t read(ByteReader& in) { return in.u16(); }
    static void write(ByteWriter& out, std::int32_t side) {
        out.u16(static_cast<std::uint16_t>(side));
    }
};

}  // namespace

struct VexQTtx3gAtom::Layout {
    using Atom = VexQTtx3gAtom;
    static constexpr Field fields[] = {
        reserved<6>(),
        field<&Atom::dataReferenceIndex_, U16>("dataReferenceIndex"),
        field<&Atom::displayFlags_, Hex<U32>>("displayFlags"),
        field<&Atom::horizontalJustification_, U8>("horizontalJustification"),
        field<&Atom::verticalJustification_, U8>("verticalJustification"),
        field<&Atom::backgroundColor_, ColorInBytes>("backgroundColor"),
        field<&Atom::textBoxTop_, Side>("textBoxTop").in("pixels"),
        field<&Atom::textBoxLeft_, Side>("textBoxLeft").in("pixels"),
        field<&Atom::textBoxBottom_, Side>("textBoxBottom").in("pixels"),
        field<&Atom::textBoxRight_, Side>("textBoxRight").in("pixels"),
        field<&Atom::startChar_, U16>("startChar"),
        field<&Atom::endChar_, U16>("endChar"),
        field<&Atom::fontID_, U16>("fontID"),
        field<&Atom::fontFace_, Hex<U8>>("fontFace"),
        field<&Atom::fontSize_, U8>("fontSize").in("pixels"),
        field<&Atom::fontColor_, ColorInBytes>("fontColor"),
        irregular<&Atom::decodeFontTable, &Atom::encodeFontTable>().holdingChildren(),
    };
    static_assert(wireWidth(fields) == 38, "46 bytes less the header; the font table follows");

    static constexpr std::string_view listing[] = {
        "dataReferenceIndex",
        "displayFlags",
        "horizontalJustification",
        "verticalJustification",
        "backgroundColor",
        "fontColor",
        "textBoxTop",
        "textBoxBottom",
        "textBoxLeft",
        "textBoxRight",
        "startChar",
        "endChar",
        "fontID",
        "fontFace",
        "fontSize",
    };
};

/// Everything that is left is the font table, whatever its own header says.
void VexQTtx3gAtom::decodeFontTable(AtomReader& in) {
    ChildMaker(*this, in).addRest(VexQTftabAtom::kClass);
}

void VexQTtx3gAtom::encodeFontTable(ByteWriter& out) const {
    if (children().size() == 1) children().front()->appendTo(out);
}

constinit const AtomClass VexQTtx3gAtom::kClass = {
    .type = "tx3g"_os,
    .className = "VexQTtx3gAtom",
    .atomName = "TX3G Subtitle Sample Description",
    .nibName = "VexQTtx3gAtom",
    .accepts = atLeast(64),
    .sizeRule = SizeRule::NotRecomputed,
    .fields = Layout::fields,
    .listing = Layout::listing,
    .create = create<VexQTtx3gAtom>,
};

}  // namespace vexqt

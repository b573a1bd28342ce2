#include "vexqt/atoms/sampledescriptions/VexQTtx3gAtom.h"

#include <gtest/gtest.h>

#include <limits>

#include "testing/bytes.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kFonts = atom("ftab"_os, {u16(1), u16(7), u8(5), text("Serif")});
const Bytes kRecord = join({
    zeros(6),                                       // reserved
    u16(0x0102),                                    // data reference index
    u32(0x20000304),                                // display flags
    u8(0x01),                                       // horizontal justification
    u8(0xFF),                                       // vertical justification
    u8(0x00),        u8(0x80), u8(0xFF), u8(0x7F),  // background: red, green, blue, alpha
    u16(0x0A0B),                                    // top
    u16(0x0C0D),                                    // left
    u16(0x0E0F),                                    // bottom
    u16(0xFFFF),                                    // right
    u16(0x1112),                                    // first character
    u16(0x1314),                                    // last character
    u16(0x1516),                                    // font
    u8(0x17),                                       // face
    u8(0x18),                                       // size
    u8(0x33),        u8(0x66), u8(0x99), u8(0xCC),  // text: red, green, blue, alpha
});
const Bytes kAtom = atom("tx3g"_os, {kRecord, kFonts});

TEST(Tx3gAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto description = VexQTtx3gAtom::initWithData(kAtom, &parent, 1000);
    ASSERT_TRUE(description);
    EXPECT_EQ(description->parent(), &parent);
    EXPECT_EQ(description->offsetInFile(), 1000U);
    EXPECT_EQ(description->atomSize(), 64U);
    EXPECT_EQ(description->atomTypeString(), "tx3g");
    EXPECT_EQ(description->dataReferenceIndex(), 0x0102);
    EXPECT_EQ(description->displayFlags(), 0x20000304U);
    EXPECT_EQ(description->horizontalJustification(), 1);
    EXPECT_EQ(description->verticalJustification(), 255);
    EXPECT_EQ(description->backgroundColor(), Color::rgb(0, 128 / 255.0, 1, 127 / 255.0));
    EXPECT_EQ(description->textBoxTop(), 0x0A0B);
    EXPECT_EQ(description->textBoxLeft(), 0x0C0D);
    EXPECT_EQ(description->textBoxBottom(), 0x0E0F);
    EXPECT_EQ(description->textBoxRight(), 65535);
    EXPECT_EQ(description->startChar(), 0x1112);
    EXPECT_EQ(description->endChar(), 0x1314);
    EXPECT_EQ(description->fontID(), 0x1516);
    EXPECT_EQ(description->fontFace(), 0x17);
    EXPECT_EQ(description->fontSize(), 0x18);
    EXPECT_EQ(description->fontColor(), Color::rgb(0.2, 0.4, 0.6, 0.8));
}

TEST(Tx3gAtom, ReadsWhatFollowsAsItsFontTable) {
    const auto description = VexQTtx3gAtom::initWithData(kAtom, nullptr, 1000);
    ASSERT_EQ(description->children().size(), 1U);
    const auto* fonts = dynamic_cast<VexQTftabAtom*>(description->children().front().get());
    ASSERT_TRUE(fonts);
    EXPECT_EQ(fonts->parent(), description.get());
    EXPECT_EQ(fonts->offsetInFile(), 1046U);
    EXPECT_EQ(fonts->atomSize(), 18U);
    EXPECT_EQ(fonts->fontTableEntries().at(0).fontName(), "Serif");
}

TEST(Tx3gAtom, TakesWhatFollowsForAFontTableWhateverItsHeaderSays) {
    const Bytes bytes = atom(
        "tx3g"_os, {kRecord, atomClaiming(3, "abcd"_os,
                                          {u16(1), u16(7), u8(5), text("Serif"), u16(8), u8(0)})});
    const auto description = VexQTtx3gAtom::initWithData(bytes, nullptr, 0);
    ASSERT_EQ(description->children().size(), 1U);
    const auto& fonts = dynamic_cast<VexQTftabAtom&>(*description->children().front());
    EXPECT_EQ(fonts.fontTableEntries().size(), 2U);
    EXPECT_EQ(fonts.atomSize(), 21U);
    EXPECT_EQ(fonts.atomTypeString(), "ftab");
}

TEST(Tx3gAtom, ComesBackByteForByte) {
    EXPECT_EQ(VexQTtx3gAtom::initWithData(kAtom, nullptr, 0)->atomData(), kAtom);
}

TEST(Tx3gAtom, WritesEveryField) {
    VexQTtx3gAtom description;
    description.setDataReferenceIndex(0x0102);
    description.setDisplayFlags(0x20000304);
    description.setHorizontalJustification(1);
    description.setVerticalJustification(255);
    description.setBackgroundColor(Color::rgb(0, 128 / 255.0, 1, 127 / 255.0));
    description.setTextBoxTop(0x0A0B);
    description.setTextBoxLeft(0x0C0D);
    description.setTextBoxBottom(0x0E0F);
    description.setTextBoxRight(-1);
    description.setStartChar(0x1112);
    description.setEndChar(0x1314);
    description.setFontID(0x1516);
    description.setFontFace(0x17);
    description.setFontSize(0x18);
    description.setFontColor(Color::rgb(0.2, 0.4, 0.6, 0.8));
    EXPECT_EQ(description.atomData(), atomClaiming(8, "tx3g"_os, {kRecord}));
    description.increaseSizeBy(38);
    EXPECT_EQ(description.atomData(), atom("tx3g"_os, {kRecord}));
    EXPECT_EQ(description.atomSize(), 46U);
}

TEST(Tx3gAtom, ReadsNoSideAsNegative) {
    Bytes bytes = kAtom;
    std::fill_n(bytes.begin() + 26, 8, std::uint8_t{0xFF});
    const auto description = VexQTtx3gAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(description->textBoxTop(), 65535);
    EXPECT_EQ(description->textBoxLeft(), 65535);
    EXPECT_EQ(description->textBoxBottom(), 65535);
    EXPECT_EQ(description->textBoxRight(), 65535);
    EXPECT_EQ(description->atomData(), bytes);
}

TEST(Tx3gAtom, WritesTheLowSixteenBitsOfASide) {
    const auto description = VexQTtx3gAtom::initWithData(kAtom, nullptr, 0);
    description->setTextBoxTop(0x7FFF1234);
    const Bytes written = description->atomData();
    EXPECT_EQ(Bytes(written.begin() + 26, written.begin() + 28), u16(0x1234));
}

TEST(Tx3gAtom, BeginsWithAGreyBackgroundThatCannotBeWritten) {
    VexQTtx3gAtom description;
    EXPECT_EQ(description.backgroundColor(), Color::grey(0, 1));
    EXPECT_EQ(description.fontColor(), Color::rgb(1, 1, 1, 1));
    EXPECT_EQ(description.dataReferenceIndex(), 0);
    EXPECT_EQ(description.displayFlags(), 0U);
    EXPECT_EQ(description.textBoxRight(), 0);
    EXPECT_EQ(description.fontSize(), 0);
    EXPECT_EQ(description.atomName(), "TX3G Subtitle Sample Description");
    EXPECT_EQ(description.atomNibName(), "VexQTtx3gAtom");
    EXPECT_THROW(description.atomData(), ColorSpaceError);
}

TEST(Tx3gAtom, RoundsAndLimitsColorComponents) {
    VexQTtx3gAtom description;
    description.setBackgroundColor(Color::rgb(0.5, 0.25, 1.7, -0.3));  // 127.5, 63.75
    description.setFontColor(Color::rgb(0.001, 0.002, std::numeric_limits<double>::quiet_NaN(),
                                        std::numeric_limits<double>::infinity()));
    const Bytes written = description.atomData();
    EXPECT_EQ(Bytes(written.begin() + 22, written.begin() + 26),
              join({u8(128), u8(64), u8(255), u8(0)}));
    EXPECT_EQ(Bytes(written.begin() + 42, written.begin() + 46),
              join({u8(0), u8(1), u8(0), u8(255)}));
}

TEST(Tx3gAtom, BringsEveryColorByteBackUnchanged) {
    for (unsigned byte = 0; byte <= 255; ++byte) {
        Bytes bytes = kAtom;
        bytes[23] = static_cast<std::uint8_t>(byte);
        ASSERT_EQ(VexQTtx3gAtom::initWithData(bytes, nullptr, 0)->atomData(), bytes) << byte;
    }
}

TEST(Tx3gAtom, WritesReservedBytesAsZero) {
    Bytes bytes = kAtom;
    for (std::size_t i = 8; i < 14; ++i) bytes[i] = 0xAB;
    EXPECT_EQ(VexQTtx3gAtom::initWithData(bytes, nullptr, 0)->atomData(), kAtom);
}

TEST(Tx3gAtom, LeavesItsSizesStaleUnlessTheyAreGrown) {
    const auto description = VexQTtx3gAtom::initWithData(kAtom, nullptr, 0);
    auto& fonts = dynamic_cast<VexQTftabAtom&>(*description->children().front());
    fonts.fontTableEntries()[0].setFontName("Sans-Serif");
    EXPECT_EQ(description->atomData(),
              atomClaiming(64, "tx3g"_os,
                           {kRecord, atomClaiming(18, "ftab"_os,
                                                  {u16(1), u16(7), u8(10), text("Sans-Serif")})}));
    fonts.increaseSizeBy(5);
    EXPECT_EQ(
        description->atomData(),
        atom("tx3g"_os, {kRecord, atom("ftab"_os, {u16(1), u16(7), u8(10), text("Sans-Serif")})}));
    EXPECT_EQ(description->atomSize(), 69U);
}

TEST(Tx3gAtom, WritesItsChildOnlyWhenItIsAlone) {
    const auto description = VexQTtx3gAtom::initWithData(kAtom, nullptr, 0);
    description->addChild(std::make_unique<VexQTftabAtom>());
    EXPECT_EQ(description->atomData(), atomClaiming(64, "tx3g"_os, {kRecord}));
    description->children().clear();
    EXPECT_EQ(description->atomData(), atomClaiming(64, "tx3g"_os, {kRecord}));
    description->addChild(VexQTAtom::initWithData(atom("abcd"_os, {u32(7)}), nullptr, 0));
    EXPECT_EQ(description->atomData(),
              atomClaiming(64, "tx3g"_os, {kRecord, atom("abcd"_os, {u32(7)})}));
}

TEST(Tx3gAtom, TakesItsSizeFromItsBytes) {
    const auto description =
        VexQTtx3gAtom::initWithData(atomClaiming(99, "abcd"_os, {kRecord, kFonts}), nullptr, 0);
    EXPECT_EQ(description->atomSize(), 64U);
    EXPECT_EQ(description->atomTypeString(), "tx3g");
    EXPECT_EQ(description->atomData(), kAtom);
}

TEST(Tx3gAtom, RefusesFewerThanSixtyFourBytes) {
    EXPECT_FALSE(VexQTtx3gAtom::initWithData(ByteView(kAtom).first(63), nullptr, 0));
}

TEST(Tx3gAtom, ListsItsPropertiesWithColorsAndSidesTogether) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTtx3gAtom().properties()) names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{
                         "dataReferenceIndex", "displayFlags", "horizontalJustification",
                         "verticalJustification", "backgroundColor", "fontColor", "textBoxTop",
                         "textBoxBottom", "textBoxLeft", "textBoxRight", "startChar", "endChar",
                         "fontID", "fontFace", "fontSize"}));
}

// Writers put a bit rate behind the font table, which is read for fonts.
TEST(Tx3gAtom, KeepsWhatFollowsItsFontsWhenAFontIsEditedCarefully) {
    const auto withFont = [](std::string_view name) {
        return atom("tx3g"_os,
                    {kRecord,
                     atom("ftab"_os,
                          {u16(1), u16(7), u8(static_cast<std::uint8_t>(name.size())), text(name)}),
                     atom("btrt"_os, {u32(0), u32(0x4000), u32(0x4000)})});
    };
    const auto description = VexQTtx3gAtom::initWithData(withFont("Arial"), nullptr, 0);
    auto& fonts = dynamic_cast<VexQTftabAtom&>(*description->children().front());
    ASSERT_EQ(fonts.fontTableEntries().size(), 2U);
    fonts.fontTableEntries()[0].setFontName("Roman");
    const SharedBytes written = Surgery().written(*description).flat();
    EXPECT_TRUE(std::ranges::equal(written.view(), withFont("Roman")));
}

}  // namespace
}  // namespace vexqt

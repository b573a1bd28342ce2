#include "vexqt/atoms/headers/VexQTtcmiAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes beforeName(std::uint32_t size, std::uint16_t reserved = 0) {
    return join({
        u32(size), text("tcmi"),                //
        u8(3),                                  // version
        u8(4), u8(5), u8(6),                    // flags
        u16(0x0102),                            // font
        u16(0x0304),                            // face
        u16(0x0506),                            // size
        u16(reserved),                          //
        u16(0x8000), u16(0x4000), u16(0xFFFF),  // text: red, green, blue
        u16(0x2000), u16(0x0001), u16(0xC000),  // background: red, green, blue
    });
}

Bytes named(std::string_view name) {
    return join({beforeName(static_cast<std::uint32_t>(33 + name.size())),
                 u8(static_cast<std::uint8_t>(name.size())), text(name)});
}

TEST(TcmiAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto atom = VexQTtcmiAtom::initWithData(named("Monaco"), &parent, 777);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 777U);
    EXPECT_EQ(atom->atomSize(), 39U);
    EXPECT_EQ(atom->version(), 3);
    EXPECT_EQ(atom->flags0(), 4);
    EXPECT_EQ(atom->flags1(), 5);
    EXPECT_EQ(atom->flags2(), 6);
    EXPECT_EQ(atom->textFont(), 0x0102);
    EXPECT_EQ(atom->textFace(), 0x0304);
    EXPECT_EQ(atom->textSize(), 0x0506);
    EXPECT_EQ(atom->textColor(), Color::rgb(0.5, 0.25, 65535.0 / 65536.0));
    EXPECT_EQ(atom->backgroundColor(), Color::rgb(0.125, 1.0 / 65536.0, 0.75));
    EXPECT_EQ(atom->fontName(), "Monaco");
}

TEST(TcmiAtom, WritesEveryField) {
    VexQTtcmiAtom atom;
    atom.setVersion(3);
    atom.setFlags0(4);
    atom.setFlags1(5);
    atom.setFlags2(6);
    atom.setTextFont(0x0102);
    atom.setTextFace(0x0304);
    atom.setTextSize(0x0506);
    atom.setTextColor(Color::rgb(0.5, 0.25, 65535.0 / 65536.0));
    atom.setBackgroundColor(Color::rgb(0.125, 1.0 / 65536.0, 0.75));
    atom.setFontName("Monaco");
    EXPECT_EQ(atom.atomData(), named("Monaco"));
    EXPECT_EQ(atom.atomSize(), 39U);
}

TEST(TcmiAtom, BeginsWithoutColorsAndName) {
    VexQTtcmiAtom atom;
    EXPECT_EQ(atom.textFont(), 0);
    EXPECT_EQ(atom.textFace(), 0);
    EXPECT_EQ(atom.textSize(), 0);
    EXPECT_EQ(atom.reserved(), 0);
    EXPECT_EQ(atom.textColor(), std::nullopt);
    EXPECT_EQ(atom.backgroundColor(), std::nullopt);
    EXPECT_EQ(atom.fontName(), std::nullopt);
    EXPECT_EQ(atom.atomName(), "Timecode Media Information");
    EXPECT_EQ(atom.atomNibName(), "VexQTtcmiAtom");
}

TEST(TcmiAtom, WritesAbsentColorsAsZerosAndAnAbsentNameAsEmpty) {
    VexQTtcmiAtom atom;
    EXPECT_EQ(atom.atomData(), join({u32(33), text("tcmi"), u8(1), zeros(24)}));
}

TEST(TcmiAtom, NeitherReadsNorWritesItsReservedField) {
    const Bytes bytes = join({beforeName(33, 0xABCD), u8(0)});
    const auto atom = VexQTtcmiAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->reserved(), 0);
    atom->setReserved(0x5678);
    EXPECT_EQ(atom->atomData(), join({beforeName(33), u8(0)}));
    EXPECT_EQ(atom->reserved(), 0x5678);
}

TEST(TcmiAtom, WrapsAFullColorComponentToZero) {
    VexQTtcmiAtom atom;
    atom.setTextColor(Color::rgb(1, 1, 1));
    atom.setBackgroundColor(Color::rgb(1.5, -0.25, 1e300));
    EXPECT_EQ(atom.atomData(), join({
                                   u32(33), text("tcmi"), u8(1), zeros(11),  //
                                   u16(0), u16(0), u16(0),                   // text
                                   u16(0x8000), u16(0xC000), u16(0),         // background
                                   u8(0),                                    // name
                               }));
}

TEST(TcmiAtom, TruncatesColorComponents) {
    VexQTtcmiAtom atom;
    atom.setTextColor(Color::rgb(0.99999999, 1.99999 / 65536, 0.3));
    const Bytes written = atom.atomData();
    EXPECT_EQ(Bytes(written.begin() + 20, written.begin() + 26),
              join({u16(0xFFFF), u16(1), u16(19660)}));
}

TEST(TcmiAtom, CannotWriteAGreyLevel) {
    VexQTtcmiAtom atom;
    atom.setTextColor(Color::grey(0.5));
    EXPECT_THROW(atom.atomData(), ColorSpaceError);
}

TEST(TcmiAtom, CutsANameThatClaimsMoreThanThereIs) {
    const Bytes bytes = join({beforeName(40), u8(200), text("Chicago")});
    ASSERT_EQ(bytes.size(), 40U);
    const auto atom = VexQTtcmiAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->fontName(), "Chicago");
    EXPECT_EQ(atom->atomData(), named("Chicago"));
}

// As many bytes as the length byte says are there with the length byte counted, one less without.
TEST(TcmiAtom, CutsANameThatClaimsOneByteMoreThanThereIs) {
    const Bytes bytes = join({beforeName(40), u8(8), text("Chicago")});
    EXPECT_EQ(VexQTtcmiAtom::initWithData(bytes, nullptr, 0)->fontName(), "Chicago");
}

TEST(TcmiAtom, DropsWhatFollowsTheName) {
    const Bytes bytes = join({beforeName(40), u8(3), text("Bob"), text("more")});
    const auto atom = VexQTtcmiAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->fontName(), "Bob");
    EXPECT_EQ(atom->atomSize(), 40U);
    EXPECT_EQ(atom->atomData(), named("Bob"));
    EXPECT_EQ(atom->atomSize(), 36U);
}

TEST(TcmiAtom, EndsANameAtAZeroByte) {
    const Bytes bytes = join({beforeName(38), u8(5), text("AB"), u8(0), text("CD")});
    const auto atom = VexQTtcmiAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->fontName(), "AB");
    EXPECT_EQ(atom->atomData(), named("AB"));
}

TEST(TcmiAtom, HasAnEmptyNameWhereTheLengthIsZero) {
    const auto atom = VexQTtcmiAtom::initWithData(named(""), nullptr, 0);
    EXPECT_EQ(atom->fontName(), "");
    EXPECT_EQ(atom->atomData(), named(""));
}

TEST(TcmiAtom, HasNoNameThatIsNotASCII) {
    const Bytes bytes = join({beforeName(35), u8(2), u8('A'), u8(0xE9)});
    const auto atom = VexQTtcmiAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->fontName(), std::nullopt);
    atom->setFontName("Caf\u00E9");
    EXPECT_EQ(atom->atomData(), named(""));
}

TEST(TcmiAtom, WritesALongNameWholeAndTheLowByteOfItsLength) {
    const std::string name(300, 'n');
    VexQTtcmiAtom atom;
    atom.setFontName(name);
    EXPECT_EQ(atom.atomData(),
              join({u32(333), text("tcmi"), u8(1), zeros(23), u8(300 - 256), text(name)}));
    EXPECT_EQ(atom.atomSize(), 333U);
}

TEST(TcmiAtom, RefusesAtomsWithoutALengthByte) {
    const Bytes bytes = beforeName(32);
    ASSERT_EQ(bytes.size(), 32U);
    EXPECT_FALSE(VexQTtcmiAtom::initWithData(bytes, nullptr, 0));
    EXPECT_TRUE(VexQTtcmiAtom::initWithData(join({bytes, u8(0)}), nullptr, 0));
}

TEST(TcmiAtom, SetsColorsByName) {
    VexQTtcmiAtom atom;
    atom.setValueForKey(Color::rgb(0.5, 0.25, 0.125), "textColor");
    EXPECT_EQ(atom.textColor(), Color::rgb(0.5, 0.25, 0.125));
    EXPECT_EQ(atom.valueForKey("textColor"), Value(Color::rgb(0.5, 0.25, 0.125)));
    atom.setNilValueForKey("textColor");
    EXPECT_EQ(atom.textColor(), std::nullopt);
    EXPECT_THROW(atom.setValueForKey(Value("red"), "textColor"), ValueError);
}

TEST(TcmiAtom, ListsItsPropertiesInFileOrder) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTtcmiAtom().properties()) names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"textFont", "textFace", "textSize", "reserved",
                                                    "textColor", "backgroundColor", "fontName"}));
}

}  // namespace
}  // namespace vexqt

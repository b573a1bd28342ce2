#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes entry(std::uint16_t fontID, std::string_view name) {
    return join({u16(fontID), u8(static_cast<std::uint8_t>(name.size())), text(name)});
}

Bytes tableClaiming(std::uint16_t count, std::initializer_list<ByteView> entries) {
    return atom("ftab"_os, {u16(count), join(entries)});
}

std::unique_ptr<VexQTftabAtom> tableFrom(ByteView bytes) {
    return VexQTftabAtom::initWithData(bytes, nullptr, 1000);
}

// MARK: Entries

TEST(FontTableEntry, ReadsFontAndName) {
    VexQTAtom parent;
    const auto font = VexQTFontTableEntry::initWithData(entry(0x0102, "Serif"), &parent, 777);
    ASSERT_TRUE(font);
    EXPECT_EQ(font->fontID(), 0x0102);
    EXPECT_EQ(font->fontName(), "Serif");
    EXPECT_EQ(font->offsetInFile(), 777U);
    EXPECT_EQ(font->atomSize(), 8U);
    EXPECT_EQ(font->version(), 0);
    EXPECT_EQ(font->atomTypeString(), "????");
    EXPECT_EQ(font->parent(), nullptr);
    EXPECT_EQ(font->unknownData(), std::nullopt);
    EXPECT_EQ(font->atomData(), entry(0x0102, "Serif"));
}

TEST(FontTableEntry, WritesFontAndNameWithoutAHeader) {
    VexQTFontTableEntry font;
    EXPECT_EQ(font.fontID(), 0);
    EXPECT_EQ(font.fontName(), std::nullopt);
    EXPECT_EQ(font.atomName(), "Font Table Entry");
    EXPECT_EQ(font.atomNibName(), "VexQTFontTableEntry");
    EXPECT_EQ(font.atomData(), entry(0, ""));
    font.setFontID(0x0102);
    font.setFontName("Serif");
    EXPECT_EQ(font.atomData(), entry(0x0102, "Serif"));
    EXPECT_EQ(font.atomSize(), 8U);
}

TEST(FontTableEntry, IsNoneWhenItsNameRunsPastTheEnd) {
    EXPECT_FALSE(VexQTFontTableEntry::initWithData(join({u16(1), u8(3), text("ab")}), nullptr, 0));
    EXPECT_TRUE(VexQTFontTableEntry::initWithData(join({u16(1), u8(2), text("ab")}), nullptr, 0));
}

TEST(FontTableEntry, RaisesForFewerThanThreeBytes) {
    EXPECT_THROW(VexQTFontTableEntry::initWithData(u16(1), nullptr, 0), RangeError);
    EXPECT_THROW(VexQTFontTableEntry::initWithData(u8(1), nullptr, 0), RangeError);
    EXPECT_THROW(VexQTFontTableEntry::initWithData({}, nullptr, 0), RangeError);
}

TEST(FontTableEntry, DropsWhatFollowsItsName) {
    const auto font =
        VexQTFontTableEntry::initWithData(join({entry(1, "ab"), text("cd")}), nullptr, 0);
    EXPECT_EQ(font->fontName(), "ab");
    EXPECT_EQ(font->atomSize(), 7U);
    EXPECT_EQ(font->atomData(), entry(1, "ab"));
}

TEST(FontTableEntry, EndsItsNameAtAZeroByte) {
    const auto font = VexQTFontTableEntry::initWithData(
        join({u16(1), u8(5), text("ab"), u8(0), text("cd")}), nullptr, 0);
    EXPECT_EQ(font->fontName(), "ab");
}

TEST(FontTableEntry, HasNoNameThatIsNotASCII) {
    const auto font =
        VexQTFontTableEntry::initWithData(join({u16(1), u8(2), u8('a'), u8(0xE9)}), nullptr, 0);
    ASSERT_TRUE(font);
    EXPECT_EQ(font->fontName(), std::nullopt);
    EXPECT_EQ(font->atomData(), entry(1, ""));
}

TEST(FontTableEntry, WritesTheLowByteOfALongNamesLength) {
    VexQTFontTableEntry font;
    font.setFontName(std::string(259, 'n'));
    EXPECT_EQ(font.atomData(), join({u16(0), u8(3), text(std::string(259, 'n'))}));
}

// MARK: Tables

TEST(FtabAtom, ReadsItsEntries) {
    VexQTAtom parent;
    const Bytes bytes = tableClaiming(2, {entry(0x0102, "Serif"), entry(0x0304, "Mono")});
    const auto table = VexQTftabAtom::initWithData(bytes, &parent, 1000);
    ASSERT_TRUE(table);
    EXPECT_EQ(table->parent(), &parent);
    EXPECT_EQ(table->offsetInFile(), 1000U);
    EXPECT_EQ(table->atomSize(), bytes.size());
    EXPECT_EQ(table->atomTypeString(), "ftab");
    ASSERT_EQ(table->fontTableEntries().size(), 2U);
    EXPECT_EQ(table->fontTableEntries()[0].fontID(), 0x0102);
    EXPECT_EQ(table->fontTableEntries()[0].fontName(), "Serif");
    EXPECT_EQ(table->fontTableEntries()[0].offsetInFile(), 1010U);
    EXPECT_EQ(table->fontTableEntries()[1].fontID(), 0x0304);
    EXPECT_EQ(table->fontTableEntries()[1].fontName(), "Mono");
    EXPECT_EQ(table->fontTableEntries()[1].offsetInFile(), 1018U);
    EXPECT_TRUE(table->children().empty());
    EXPECT_EQ(table->atomData(), bytes);
}

TEST(FtabAtom, BeginsEmpty) {
    VexQTftabAtom table;
    EXPECT_TRUE(table.fontTableEntries().empty());
    EXPECT_EQ(table.atomName(), "Font Table");
    EXPECT_EQ(table.atomNibName(), "VexQTftabAtom");
    EXPECT_EQ(table.atomData(), join({u32(8), text("ftab"), u16(0)}));
}

TEST(FtabAtom, ReadsEntriesToTheEndWhateverItsCountSays) {
    const auto table = tableFrom(tableClaiming(1, {entry(1, "ab"), entry(2, "c")}));
    ASSERT_EQ(table->fontTableEntries().size(), 2U);
    EXPECT_EQ(table->fontTableEntries()[1].fontName(), "c");
    EXPECT_EQ(table->atomData(), tableClaiming(2, {entry(1, "ab"), entry(2, "c")}));
    EXPECT_EQ(tableFrom(tableClaiming(9, {entry(1, "ab")}))->fontTableEntries().size(), 1U);
}

TEST(FtabAtom, ReadsNothingWhenItsCountIsZero) {
    const Bytes bytes = tableClaiming(0, {entry(1, "ab")});
    const auto table = tableFrom(bytes);
    EXPECT_TRUE(table->fontTableEntries().empty());
    EXPECT_EQ(table->atomSize(), 15U);
    EXPECT_EQ(table->atomData(), join({u32(15), text("ftab"), u16(0)}));
}

TEST(FtabAtom, ReadsNothingFromFewerThanTwelveBytes) {
    EXPECT_TRUE(tableFrom(tableClaiming(1, {}))->fontTableEntries().empty());
    EXPECT_TRUE(tableFrom(tableClaiming(1, {u8(7)}))->fontTableEntries().empty());
}

TEST(FtabAtom, RefusesFewerThanTenBytes) {
    EXPECT_FALSE(tableFrom(atom("ftab"_os, {u8(0)})));
    EXPECT_TRUE(tableFrom(atom("ftab"_os, {u16(0)})));
}

TEST(FtabAtom, LeavesOutAnEntryThatRunsPastTheEnd) {
    const auto table = tableFrom(tableClaiming(2, {entry(1, "ab"), u16(2), u8(5), text("cdef")}));
    ASSERT_EQ(table->fontTableEntries().size(), 1U);
    EXPECT_EQ(table->fontTableEntries()[0].fontName(), "ab");
}

TEST(FtabAtom, DropsOneByteBehindItsLastEntry) {
    const auto table = tableFrom(tableClaiming(1, {entry(1, "ab"), u8(7)}));
    ASSERT_EQ(table->fontTableEntries().size(), 1U);
    EXPECT_EQ(table->fontTableEntries()[0].fontName(), "ab");
    EXPECT_EQ(table->atomSize(), 16U);
    EXPECT_EQ(table->atomData(), atomClaiming(16, "ftab"_os, {u16(1), entry(1, "ab")}));
}

TEST(FtabAtom, RaisesWhereTwoBytesAreLeft) {
    try {
        tableFrom(tableClaiming(1, {entry(1, "ab"), u16(7)}));
        ADD_FAILURE() << "nothing raised";
    } catch (const RangeError& error) {
        EXPECT_EQ(error.offset(), 17U);
    }
    EXPECT_THROW(tableFrom(tableClaiming(1, {u16(7)})), RangeError);
}

TEST(FtabAtom, TakesItsSizeFromItsBytesAndWritesItAsItIsHeld) {
    const auto table = tableFrom(atomClaiming(99, "abcd"_os, {u16(1), entry(1, "ab")}));
    EXPECT_EQ(table->atomSize(), 15U);
    EXPECT_EQ(table->atomTypeString(), "ftab");
    table->fontTableEntries()[0].setFontName("longer");
    EXPECT_EQ(table->atomData(), atomClaiming(15, "ftab"_os, {u16(1), entry(1, "longer")}));
    EXPECT_EQ(table->atomSize(), 15U);
    table->increaseSizeBy(4);
    EXPECT_EQ(table->atomData(), tableClaiming(1, {entry(1, "longer")}));
}

TEST(FtabAtom, StoresTheSizesOfTheEntriesThatItWrites) {
    const auto table = tableFrom(tableClaiming(1, {entry(1, "ab")}));
    table->fontTableEntries()[0].setFontName("longer");
    EXPECT_EQ(table->fontTableEntries()[0].atomSize(), 5U);
    table->atomData();
    EXPECT_EQ(table->fontTableEntries()[0].atomSize(), 9U);
}

TEST(FtabAtom, IsEditedThroughItsList) {
    const auto table =
        tableFrom(tableClaiming(3, {entry(1, "a"), entry(2, "bc"), entry(3, "def")}));
    auto& entries = table->fontTableEntries();
    entries.erase(entries.begin());
    EXPECT_EQ(entries[0].fontName(), "bc");
    EXPECT_EQ(entries[0].atomSize(), 5U);
    EXPECT_EQ(entries[0].offsetInFile(), 1014U);
    entries.insert(entries.begin(), VexQTFontTableEntry());
    entries[0].setFontID(9);
    EXPECT_EQ(table->atomData(),
              atomClaiming(25, "ftab"_os, {u16(3), entry(9, ""), entry(2, "bc"), entry(3, "def")}));
    table->setFontTableEntries({});
    EXPECT_EQ(table->atomData(), atomClaiming(25, "ftab"_os, {u16(0)}));
}

TEST(FtabAtom, ShowsItsListAsColumns) {
    const auto table = tableFrom(tableClaiming(2, {entry(1, "ab"), entry(2, "c")}));
    ASSERT_EQ(table->properties().size(), 1U);
    const Field& property = *table->properties()[0];
    EXPECT_EQ(property.name, "fontTableEntries");
    ASSERT_TRUE(property.list);
    ASSERT_EQ(property.list->columns.size(), 2U);
    EXPECT_EQ(property.list->columns[0].name, "fontID");
    EXPECT_EQ(property.list->columns[1].name, "fontName");
    EXPECT_EQ(property.list->size(*table), 2U);
    EXPECT_EQ(property.list->cell(*table, 1, 0), Value(2));
    EXPECT_EQ(property.list->cell(*table, 0, 1), Value("ab"));
    property.list->setCell(*table, 1, 1, Value("z"));
    property.list->insertRows(*table, 0, 1);
    property.list->removeRows(*table, 1, 1);
    ASSERT_EQ(table->fontTableEntries().size(), 2U);
    EXPECT_EQ(table->fontTableEntries()[0].fontName(), std::nullopt);
    EXPECT_EQ(table->fontTableEntries()[1].fontName(), "z");
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/sampledescriptions/VexQTmebxkeysAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes keyd(OSType nameSpace, std::string_view name) {
    return atom("keyd"_os, {u32(nameSpace), text(name)});
}
Bytes dtyp(std::uint64_t type) { return atom("dtyp"_os, {u64(type)}); }

/// A key's record: the code where atoms have their type is the key's own.
Bytes key(std::uint32_t index, std::initializer_list<ByteView> records) {
    return atom(index, records);
}
Bytes key(std::uint32_t index, std::string_view name) {
    return key(index, {keyd("mdta"_os, name), dtyp(index)});
}
Bytes table(std::initializer_list<ByteView> keys) { return atom("keys"_os, keys); }

std::unique_ptr<VexQTmebxkeysAtom> read(ByteView bytes) {
    return VexQTmebxkeysAtom::initWithData(bytes, nullptr, 0);
}

// MARK: Entries

TEST(MebxkeyEntry, BeginsWithoutNameAndKey) {
    const VexQTmebxkeyEntry entry;
    EXPECT_EQ(entry.index(), 0U);
    EXPECT_EQ(entry.nameSpace(), "????"_os);
    EXPECT_EQ(entry.nameSpaceString(), "????");
    EXPECT_EQ(entry.value(), std::nullopt);
    EXPECT_EQ(entry.dataType(), 0U);
    EXPECT_EQ(entry.key(), std::nullopt);
    EXPECT_EQ(entry.keyData(), key(0, {keyd("????"_os, ""), dtyp(0)}));
}

TEST(MebxkeyEntry, GivesItsRecord) {
    const VexQTmebxkeyEntry entry(0x01020304, "mdta"_os, "com.\u00E9", 0x05060708090A0B0C);
    EXPECT_EQ(entry.keyData(), join({
                                   u32(42),                  // size
                                   u32(0x01020304),          // key
                                   u32(18), text("keyd"),    //
                                   text("mdta"),             // namespace
                                   text("com.\xC3\xA9"),     // name
                                   u32(16), text("dtyp"),    //
                                   u64(0x05060708090A0B0C),  // type
                               }));
}

TEST(MebxkeyEntry, SetsEveryField) {
    VexQTmebxkeyEntry entry;
    entry.setIndex(7);
    entry.setNameSpaceString("udta");
    entry.setValue("name");
    entry.setDataType(9);
    entry.setKey("spare");
    EXPECT_EQ(entry.nameSpace(), "udta"_os);
    EXPECT_EQ(entry.key(), "spare");
    EXPECT_EQ(entry.keyData(), key(7, {keyd("udta"_os, "name"), dtyp(9)}));
    entry.setNameSpaceString("no code");
    EXPECT_EQ(entry.nameSpace(), "????"_os);
    entry.setNameSpace("mdta"_os);
    EXPECT_EQ(entry.nameSpaceString(), "mdta");
}

// MARK: Tables

TEST(MebxkeysAtom, ReadsItsKeys) {
    VexQTAtom parent;
    const Bytes bytes = table({key(0x01020304, {keyd("mdta"_os, "a.b"), dtyp(0x05060708090A0B0C)}),
                               key(0x11121314, {keyd("udta"_os, "c"), dtyp(0x15161718191A1B1C)})});
    const auto atom = VexQTmebxkeysAtom::initWithData(bytes, &parent, 777);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 777U);
    EXPECT_EQ(atom->atomSize(), bytes.size());
    EXPECT_EQ(atom->atomTypeString(), "keys");
    ASSERT_EQ(atom->numberOfKeys(), 2U);
    EXPECT_EQ(atom->keys()[0].index(), 0x01020304U);
    EXPECT_EQ(atom->keys()[0].nameSpace(), "mdta"_os);
    EXPECT_EQ(atom->keys()[0].value(), "a.b");
    EXPECT_EQ(atom->keys()[0].dataType(), 0x05060708090A0B0CU);
    EXPECT_EQ(atom->keys()[0].key(), std::nullopt);
    EXPECT_EQ(atom->keys()[1].index(), 0x11121314U);
    EXPECT_EQ(atom->keys()[1].nameSpace(), "udta"_os);
    EXPECT_EQ(atom->keys()[1].value(), "c");
    EXPECT_EQ(atom->keys()[1].dataType(), 0x15161718191A1B1CU);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(MebxkeysAtom, BeginsEmpty) {
    VexQTmebxkeysAtom atom;
    EXPECT_EQ(atom.numberOfKeys(), 0U);
    EXPECT_EQ(atom.atomName(), "Metadata Keys");
    EXPECT_EQ(atom.atomNibName(), "VexQTkeysAtom");
    EXPECT_EQ(atom.atomData(), join({u32(8), text("keys")}));
}

TEST(MebxkeysAtom, WritesKeysInNaturalOrderAndKeepsItsOwn) {
    const auto atom = read(table({key(1, "b10"), key(2, "b9")}));
    EXPECT_EQ(atom->atomData(), table({key(2, "b9"), key(1, "b10")}));
    EXPECT_EQ(atom->keys()[0].value(), "b10");
    EXPECT_EQ(atom->keys()[1].value(), "b9");
}

TEST(MebxkeysAtom, WritesEqualNamesInTheOrderOfTheList) {
    const auto atom = read(table({key(1, "B2"), key(2, "b1"), key(3, "b2"), key(4, "b02")}));
    EXPECT_EQ(atom->atomData(), table({key(2, "b1"), key(1, "B2"), key(3, "b2"), key(4, "b02")}));
}

TEST(MebxkeysAtom, TakesAnAbsentNameForAnEmptyOne) {
    VexQTmebxkeysAtom atom;
    atom.keys().emplace_back(1, "mdta"_os, "a", 1);
    atom.keys().emplace_back(2, "mdta"_os, "", 2);
    atom.keys().emplace_back(3, "mdta"_os, std::nullopt, 3);
    EXPECT_EQ(atom.atomData(), table({key(2, ""), key(3, ""), key(1, "a")}));
}

TEST(MebxkeysAtom, ReadsRecordsInAnyOrder) {
    const auto atom = read(table({key(1, {dtyp(7), keyd("mdta"_os, "a")})}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].value(), "a");
    EXPECT_EQ(atom->keys()[0].dataType(), 7U);
    EXPECT_EQ(atom->atomData(), table({key(1, {keyd("mdta"_os, "a"), dtyp(7)})}));
}

TEST(MebxkeysAtom, SkipsOtherRecords) {
    const auto atom = read(table({key(1, {testing::atom("setu"_os, {u32(9)}), keyd("mdta"_os, "a"),
                                          testing::atom("loca"_os), dtyp(7)})}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->atomData(), table({key(1, {keyd("mdta"_os, "a"), dtyp(7)})}));
}

TEST(MebxkeysAtom, HasATypeOfZeroWhereNoneIsGiven) {
    const auto atom = read(table({key(1, {keyd("mdta"_os, "a")})}));
    EXPECT_EQ(atom->keys().at(0).dataType(), 0U);
}

TEST(MebxkeysAtom, LetsTheLastOfSeveralNamesDecide) {
    const auto atom =
        read(table({key(1, {keyd("mdta"_os, "a"), keyd("udta"_os, "b"), dtyp(1), dtyp(2)})}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].nameSpace(), "udta"_os);
    EXPECT_EQ(atom->keys()[0].value(), "b");
    EXPECT_EQ(atom->keys()[0].dataType(), 2U);
    EXPECT_EQ(
        read(table({key(1, {keyd("mdta"_os, "a"), keyd("mdta"_os, "\xFF")})}))->numberOfKeys(), 0U);
    EXPECT_EQ(
        read(table({key(1, {keyd("mdta"_os, "\xFF"), keyd("mdta"_os, "a")})}))->numberOfKeys(), 1U);
}

TEST(MebxkeysAtom, HasNoEntryForAKeyWithoutAName) {
    const auto atom = read(table({key(1, {dtyp(7)}), key(2, {}), key(3, "c")}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].index(), 3U);
}

TEST(MebxkeysAtom, HasNoEntryForANameThatIsNoText) {
    const auto atom = read(table({key(1, "a\xE9"), key(2, "b")}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].index(), 2U);
}

TEST(MebxkeysAtom, EndsANameAtAZeroByte) {
    const auto atom = read(table({key(1, std::string_view("ab\0\xFF", 4))}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].value(), "ab");
}

TEST(MebxkeysAtom, KeepsAnEmptyName) {
    const auto atom = read(table({key(1, "")}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].value(), "");
}

TEST(MebxkeysAtom, SkipsRecordsThatAreTooShortForWhatTheyAre) {
    const auto atom =
        read(table({key(1, {testing::atom("keyd"_os, {zeros(3)}), keyd("mdta"_os, "a"),
                            testing::atom("dtyp"_os, {zeros(7)})})}));
    ASSERT_EQ(atom->numberOfKeys(), 1U);
    EXPECT_EQ(atom->keys()[0].value(), "a");
    EXPECT_EQ(atom->keys()[0].dataType(), 0U);
}

TEST(MebxkeysAtom, EndsARecordWalkAtASizeThatDoesNotFit) {
    for (const std::uint32_t size : {0U, 7U, 17U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(size);
        const auto atom = read(table({
            key(1, {keyd("mdta"_os, "a"), atomClaiming(size, "dtyp"_os, {u64(7)})}),
            key(2, "b"),
        }));
        ASSERT_EQ(atom->numberOfKeys(), 2U);
        EXPECT_EQ(atom->keys()[0].dataType(), 0U);
        EXPECT_EQ(atom->keys()[1].value(), "b");
    }
}

TEST(MebxkeysAtom, EndsAtAKeyShorterThanItsHeader) {
    for (const std::uint32_t size : {0U, 7U}) {
        SCOPED_TRACE(size);
        const auto atom =
            read(table({key(1, "a"), atomClaiming(size, 2, {keyd("mdta"_os, "b")}), key(3, "c")}));
        ASSERT_EQ(atom->numberOfKeys(), 1U);
        EXPECT_EQ(atom->keys()[0].index(), 1U);
    }
}

TEST(MebxkeysAtom, CutsAKeyThatReachesPastTheEnd) {
    const auto atom =
        read(table({key(1, "a"), atomClaiming(0xFFFFFFFF, 2, {keyd("mdta"_os, "b"), dtyp(2)})}));
    ASSERT_EQ(atom->numberOfKeys(), 2U);
    EXPECT_EQ(atom->keys()[1].value(), "b");
    EXPECT_EQ(atom->atomData(), table({key(1, "a"), key(2, "b")}));
}

TEST(MebxkeysAtom, DropsTrailingBytes) {
    const auto atom = read(table({key(1, "a"), zeros(7)}));
    EXPECT_EQ(atom->atomData(), table({key(1, "a")}));
}

TEST(MebxkeysAtom, IsEmptyInFewerThanSixteenBytes) {
    for (const std::size_t length : {0U, 4U, 8U, 15U}) {
        SCOPED_TRACE(length);
        const Bytes bytes = table({key(1, "a")});
        const auto atom = read(ByteView(bytes).first(length));
        ASSERT_TRUE(atom);
        EXPECT_EQ(atom->numberOfKeys(), 0U);
        EXPECT_EQ(atom->atomSize(), length);
    }
}

TEST(MebxkeysAtom, IsEditedThroughItsList) {
    const auto atom = read(table({key(1, "a")}));
    atom->keys().emplace_back(2, "mdta"_os, "0", 2);
    EXPECT_EQ(atom->atomData(), table({key(2, "0"), key(1, "a")}));
    EXPECT_EQ(atom->atomSize(), 8U + 2 * 37);
    atom->setKeys({});
    EXPECT_EQ(atom->atomData(), table({}));
}

TEST(MebxkeysAtom, ShowsItsListAsColumns) {
    const auto atom = read(table({key(1, "a")}));
    ASSERT_EQ(atom->properties().size(), 1U);
    const Field& property = *atom->properties()[0];
    EXPECT_EQ(property.name, "keys");
    ASSERT_TRUE(property.list);
    std::vector<std::string_view> names;
    for (const Field& column : property.list->columns) names.push_back(column.name);
    EXPECT_EQ(names,
              (std::vector<std::string_view>{"index", "nameSpace", "value", "dataType", "key"}));
    EXPECT_EQ(property.list->columns[0].display, Display::Plain);
    EXPECT_EQ(property.list->columns[1].display, Display::Code);
    EXPECT_EQ(property.list->cell(*atom, 0, 0), Value(1));
    EXPECT_EQ(property.list->cell(*atom, 0, 1), Value("mdta"_os));
    EXPECT_EQ(property.list->cell(*atom, 0, 2), Value("a"));
    EXPECT_EQ(property.list->cell(*atom, 0, 3), Value(1));
    EXPECT_EQ(property.list->cell(*atom, 0, 4), Value());
    property.list->setCell(*atom, 0, 2, Value("z"));
    EXPECT_EQ(atom->keys()[0].value(), "z");
}

}  // namespace
}  // namespace vexqt

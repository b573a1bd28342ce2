#include "vexqt/atoms/sampletables/VexQTco64Atom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

// Twice the same, and the greatest first: nothing sorts or checks them.
const Bytes kThreeNumbers = atom("co64"_os, {
                                                u8(0x05),  // version
                                                u8(0),
                                                u16(0),  // flags
                                                u32(3),  // number of entries
                                                u64(0x7102030405060708),
                                                u64(0x1112131415161718),
                                                u64(0x1112131415161718),
                                            });
const std::vector<std::int64_t> kNumbers = {0x7102030405060708, 0x1112131415161718,
                                            0x1112131415161718};

TEST(Co64Atom, FieldsAreRead) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "co64"_os);
    EXPECT_EQ(atom->atomSize(), 40u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    EXPECT_EQ(std::as_const(*atom).chunkOffsets(), kNumbers);
    EXPECT_FALSE(atom->unknownData());
}

TEST(Co64Atom, BytesAreWrittenBackBeforeRowsAreDecoded) {
    EXPECT_EQ(VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0)->atomData(), kThreeNumbers);
}

TEST(Co64Atom, BytesAreWrittenBackAfterRowsWereDecoded) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(std::as_const(*atom).chunkOffsets().size(), 3u);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(Co64Atom, BytesAreWrittenBackFromRowsThatMayHaveBeenEdited) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(atom->chunkOffsets(), kNumbers);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(Co64Atom, EditsOfTheListAreWritten) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0);
    atom->chunkOffsets().resize(1);
    atom->chunkOffsets().push_back(77);
    EXPECT_EQ(atom->atomData(), testing::atom("co64"_os, {u8(5), u8(0), u16(0), u32(2),
                                                          u64(0x7102030405060708), u64(77)}));
}

TEST(Co64Atom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0);
    atom->setChunkOffsets({0});
    EXPECT_EQ(atom->atomData(), testing::atom("co64"_os, {u8(5), u8(0), u16(0), u32(1), u64(0)}));
}

TEST(Co64Atom, AnAtomMadeInMemoryIsEmpty) {
    VexQTco64Atom atom;
    EXPECT_EQ(atom.atomType(), "co64"_os);
    EXPECT_EQ(atom.atomName(), "Chunk Offset Table (64-bit)");
    EXPECT_EQ(atom.atomNibName(), "VexQTco64Atom");
    EXPECT_TRUE(atom.chunkOffsets().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("co64"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(Co64Atom, AnEmptyTableIsWrittenBack) {
    const Bytes empty = atom("co64"_os, {u8(0), u8(0), u16(0), u32(0)});
    ASSERT_EQ(empty.size(), 16u);
    const auto atom = VexQTco64Atom::initWithData(empty, nullptr, 0);
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->chunkOffsets().empty());
    EXPECT_EQ(atom->atomData(), empty);
}

TEST(Co64Atom, FlagsAreReadAndWrittenBack) {
    const Bytes bytes = atom("co64"_os, {u8(0), u8(2), u8(3), u8(4), u32(0)});
    const auto atom = VexQTco64Atom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->flags0(), 2);
    EXPECT_EQ(atom->flags1(), 3);
    EXPECT_EQ(atom->flags2(), 4);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(Co64Atom, AnOffsetBeyond4GiBIsWrittenBack) {
    const Bytes bytes = atom("co64"_os, {u8(0), u8(0), u16(0), u32(1), u64(0x0000000100000000)});
    const auto atom = VexQTco64Atom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->chunkOffsets(), (std::vector<std::int64_t>{4294967296}));
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(Co64Atom, AnOffsetWithTheHighestBitIsANegativeNumber) {
    const Bytes bytes = atom("co64"_os, {u8(0), u8(0), u16(0), u32(1), u64(0xFFFFFFFFFFFFFFFE)});
    const auto atom = VexQTco64Atom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(listNamed(*atom, "chunkOffsets").cell(*atom, 0, 0), Value(std::int64_t{-2}));
    EXPECT_EQ(atom->chunkOffsets()[0], -2);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(Co64Atom, TheCountReadStaysWhateverBecomesOfTheList) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(atom->numberOfEntries(), 3u);
    atom->chunkOffsets().pop_back();
    EXPECT_EQ(atom->numberOfEntries(), 3u);
    EXPECT_EQ(atom->valueForKey("numberOfEntries"), Value(3u));
    EXPECT_EQ(ByteReader(atom->atomData(), 12).u32(), 2u);
}

TEST(Co64Atom, TheCountReadCannotBeSet) {
    VexQTco64Atom atom;
    EXPECT_THROW(atom.setValueForKey(9, "numberOfEntries"), UndefinedKeyError);
}

TEST(Co64Atom, TheListIsListedBeforeTheCount) {
    std::vector<std::string_view> names;
    for (const Field* field : VexQTco64Atom().properties()) names.push_back(field->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"chunkOffsets", "numberOfEntries"}));
}

TEST(Co64Atom, FlagsThatWereSetAreWritten) {
    VexQTco64Atom atom;
    atom.setFlags0(2);
    atom.setFlags1(3);
    atom.setFlags2(4);
    EXPECT_EQ(atom.atomData(), testing::atom("co64"_os, {u8(1), u8(2), u8(3), u8(4), u32(0)}));
}

TEST(Co64Atom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTco64Atom::initWithData(ByteView(kThreeNumbers).first(length), nullptr, 0))
            << length;
}

TEST(Co64Atom, TheSizeAndTypeReadDoNotCount) {
    const auto atom = VexQTco64Atom::initWithData(
        atomClaiming(1234, "abcd"_os, {u8(0), u8(0), u16(0), u32(1), u64(4)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 24u);
    EXPECT_EQ(atom->atomType(), "co64"_os);
    EXPECT_EQ(atom->chunkOffsets().size(), 1u);
}

TEST(Co64Atom, WritingStoresTheSize) {
    const auto atom = VexQTco64Atom::initWithData(kThreeNumbers, nullptr, 0);
    atom->chunkOffsets().clear();
    EXPECT_EQ(atom->atomData().size(), 16u);
    EXPECT_EQ(atom->atomSize(), 16u);
}

TEST(Co64Atom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTco64Atom::initWithData(
        testing::atom("co64"_os, {u8(0), u8(0), u16(0), u32(1), u64(4), u64(5), u8(6)}), nullptr,
        0);
    EXPECT_EQ(atom->chunkOffsets(), (std::vector<std::int64_t>{4}));
    EXPECT_EQ(atom->atomData(), testing::atom("co64"_os, {u8(0), u8(0), u16(0), u32(1), u64(4)}));
}

TEST(Co64Atom, AMissingEntryIsARangeError) {
    const Bytes oneEntry = join({u32(0), u32("co64"_os), u32(0), u32(2), u64(3)});
    for (const std::size_t bytesOfTheNext : {0u, 1u, 7u})
        EXPECT_EQ(missingRead<VexQTco64Atom>(join({oneEntry, zeros(bytesOfTheNext)})),
                  (MissingRead{24, 8, 24 + bytesOfTheNext}));
}

TEST(Co64Atom, ACountBeyondAllReasonIsARangeErrorToo) {
    EXPECT_EQ(missingRead<VexQTco64Atom>(atom("co64"_os, {u32(0), u32(0xFFFFFFFF), u64(1)})),
              (MissingRead{24, 8, 24}));
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

// Twice the same, and the greatest first: nothing sorts or checks them.
const Bytes kThreeNumbers = atom("stco"_os, {
                                                u8(0x05),  // version
                                                u8(0),
                                                u16(0),  // flags
                                                u32(3),  // number of entries
                                                u32(0xF1F2F3F4),
                                                u32(0x01020304),
                                                u32(0x01020304),
                                            });
const std::vector<std::uint32_t> kNumbers = {0xF1F2F3F4, 0x01020304, 0x01020304};

TEST(StcoAtom, FieldsAreRead) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "stco"_os);
    EXPECT_EQ(atom->atomSize(), 28u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    EXPECT_EQ(std::as_const(*atom).chunkOffsets(), kNumbers);
    EXPECT_FALSE(atom->unknownData());
}

TEST(StcoAtom, BytesAreWrittenBackBeforeRowsAreDecoded) {
    EXPECT_EQ(VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0)->atomData(), kThreeNumbers);
}

TEST(StcoAtom, BytesAreWrittenBackAfterRowsWereDecoded) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(std::as_const(*atom).chunkOffsets().size(), 3u);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(StcoAtom, BytesAreWrittenBackFromRowsThatMayHaveBeenEdited) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(atom->chunkOffsets(), kNumbers);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(StcoAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->chunkOffsets().resize(1);
    atom->chunkOffsets().push_back(77);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stco"_os, {u8(5), u8(0), u16(0), u32(2), u32(0xF1F2F3F4), u32(77)}));
}

TEST(StcoAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->setChunkOffsets({0});
    EXPECT_EQ(atom->atomData(), testing::atom("stco"_os, {u8(5), u8(0), u16(0), u32(1), u32(0)}));
}

TEST(StcoAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTstcoAtom atom;
    EXPECT_EQ(atom.atomType(), "stco"_os);
    EXPECT_EQ(atom.atomName(), "Chunk Offset Table");
    EXPECT_EQ(atom.atomNibName(), "VexQTstcoAtom");
    EXPECT_TRUE(atom.chunkOffsets().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("stco"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(StcoAtom, AnEmptyTableIsWrittenBack) {
    const Bytes empty = atom("stco"_os, {u8(0), u8(0), u16(0), u32(0)});
    ASSERT_EQ(empty.size(), 16u);
    const auto atom = VexQTstcoAtom::initWithData(empty, nullptr, 0);
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->chunkOffsets().empty());
    EXPECT_EQ(atom->atomData(), empty);
}

TEST(StcoAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTstcoAtom::initWithData(
        testing::atom("stco"_os, {u8(0), u8(2), u8(3), u8(4), u32(1), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), testing::atom("stco"_os, {u8(0), u8(0), u16(0), u32(1), u32(5)}));
}

TEST(StcoAtom, TheGreatestNumbersAreWrittenBack) {
    const Bytes bytes =
        atom("stco"_os, {u8(0), u8(0), u16(0), u32(2), u32(0xFFFFFFFF), u32(0xFFFFFFF0)});
    const auto atom = VexQTstcoAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->chunkOffsets(), (std::vector<std::uint32_t>{4294967295, 4294967280}));
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(StcoAtom, AWiderNumberKeepsItsLowBits) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0);
    listNamed(*atom, "chunkOffsets").setCell(*atom, 1, 0, Value(std::uint64_t{0x0000000512345678}));
    EXPECT_EQ(atom->chunkOffsets()[1], 0x12345678u);
}

TEST(StcoAtom, FlagsThatWereSetAreNotWritten) {
    VexQTstcoAtom atom;
    atom.setFlags0(2);
    atom.setFlags1(3);
    atom.setFlags2(4);
    EXPECT_EQ(atom.atomData(), testing::atom("stco"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(StcoAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTstcoAtom::initWithData(ByteView(kThreeNumbers).first(length), nullptr, 0))
            << length;
}

TEST(StcoAtom, TheSizeAndTypeReadDoNotCount) {
    const auto atom = VexQTstcoAtom::initWithData(
        atomClaiming(1234, "abcd"_os, {u8(0), u8(0), u16(0), u32(1), u32(4)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 20u);
    EXPECT_EQ(atom->atomType(), "stco"_os);
    EXPECT_EQ(atom->chunkOffsets().size(), 1u);
}

TEST(StcoAtom, WritingStoresTheSize) {
    const auto atom = VexQTstcoAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->chunkOffsets().clear();
    EXPECT_EQ(atom->atomData().size(), 16u);
    EXPECT_EQ(atom->atomSize(), 16u);
}

TEST(StcoAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTstcoAtom::initWithData(
        testing::atom("stco"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5), u8(6)}), nullptr,
        0);
    EXPECT_EQ(atom->chunkOffsets(), (std::vector<std::uint32_t>{4}));
    EXPECT_EQ(atom->atomData(), testing::atom("stco"_os, {u8(0), u8(0), u16(0), u32(1), u32(4)}));
}

TEST(StcoAtom, AMissingEntryIsARangeError) {
    const Bytes oneEntry = join({u32(0), u32("stco"_os), u32(0), u32(2), u32(3)});
    for (const std::size_t bytesOfTheNext : {0u, 1u, 3u})
        EXPECT_EQ(missingRead<VexQTstcoAtom>(join({oneEntry, zeros(bytesOfTheNext)})),
                  (MissingRead{20, 4, 20 + bytesOfTheNext}));
}

TEST(StcoAtom, ACountBeyondAllReasonIsARangeErrorToo) {
    EXPECT_EQ(missingRead<VexQTstcoAtom>(atom("stco"_os, {u32(0), u32(0xFFFFFFFF), u32(1)})),
              (MissingRead{20, 4, 20}));
}

}  // namespace
}  // namespace vexqt

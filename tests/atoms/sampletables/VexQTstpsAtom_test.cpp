#include "vexqt/atoms/sampletables/VexQTstpsAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

// Twice the same, and the greatest first: nothing sorts or checks them.
const Bytes kThreeNumbers = atom("stps"_os, {
                                                u8(0x05),  // version
                                                u8(0),
                                                u16(0),  // flags
                                                u32(3),  // number of entries
                                                u32(0xF1F2F3F4),
                                                u32(0x01020304),
                                                u32(0x01020304),
                                            });
const std::vector<std::uint32_t> kNumbers = {0xF1F2F3F4, 0x01020304, 0x01020304};

TEST(StpsAtom, FieldsAreRead) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "stps"_os);
    EXPECT_EQ(atom->atomSize(), 28u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    EXPECT_EQ(std::as_const(*atom).syncSamples(), kNumbers);
    EXPECT_FALSE(atom->unknownData());
}

TEST(StpsAtom, BytesAreWrittenBackBeforeRowsAreDecoded) {
    EXPECT_EQ(VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0)->atomData(), kThreeNumbers);
}

TEST(StpsAtom, BytesAreWrittenBackAfterRowsWereDecoded) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(std::as_const(*atom).syncSamples().size(), 3u);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(StpsAtom, BytesAreWrittenBackFromRowsThatMayHaveBeenEdited) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(atom->syncSamples(), kNumbers);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(StpsAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->syncSamples().resize(1);
    atom->syncSamples().push_back(77);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stps"_os, {u8(5), u8(0), u16(0), u32(2), u32(0xF1F2F3F4), u32(77)}));
}

TEST(StpsAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->setSyncSamples({0});
    EXPECT_EQ(atom->atomData(), testing::atom("stps"_os, {u8(5), u8(0), u16(0), u32(1), u32(0)}));
}

TEST(StpsAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTstpsAtom atom;
    EXPECT_EQ(atom.atomType(), "stps"_os);
    EXPECT_EQ(atom.atomName(), "Partial Sync Sample");
    EXPECT_EQ(atom.atomNibName(), "VexQTstpsAtom");
    EXPECT_TRUE(atom.syncSamples().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("stps"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(StpsAtom, AnEmptyTableIsWrittenBack) {
    const Bytes empty = atom("stps"_os, {u8(0), u8(0), u16(0), u32(0)});
    ASSERT_EQ(empty.size(), 16u);
    const auto atom = VexQTstpsAtom::initWithData(empty, nullptr, 0);
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->syncSamples().empty());
    EXPECT_EQ(atom->atomData(), empty);
}

TEST(StpsAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTstpsAtom::initWithData(
        testing::atom("stps"_os, {u8(0), u8(2), u8(3), u8(4), u32(1), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), testing::atom("stps"_os, {u8(0), u8(0), u16(0), u32(1), u32(5)}));
}

TEST(StpsAtom, TheGreatestNumbersAreWrittenBack) {
    const Bytes bytes =
        atom("stps"_os, {u8(0), u8(0), u16(0), u32(2), u32(0xFFFFFFFF), u32(0xFFFFFFF0)});
    const auto atom = VexQTstpsAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->syncSamples(), (std::vector<std::uint32_t>{4294967295, 4294967280}));
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(StpsAtom, AWiderNumberKeepsItsLowBits) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0);
    listNamed(*atom, "syncSamples").setCell(*atom, 1, 0, Value(std::uint64_t{0x0000000512345678}));
    EXPECT_EQ(atom->syncSamples()[1], 0x12345678u);
}

TEST(StpsAtom, FlagsThatWereSetAreWritten) {
    VexQTstpsAtom atom;
    atom.setFlags0(2);
    atom.setFlags1(3);
    atom.setFlags2(4);
    EXPECT_EQ(atom.atomData(), testing::atom("stps"_os, {u8(1), u8(2), u8(3), u8(4), u32(0)}));
}

TEST(StpsAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTstpsAtom::initWithData(ByteView(kThreeNumbers).first(length), nullptr, 0))
            << length;
}

TEST(StpsAtom, TheSizeAndTypeReadDoNotCount) {
    const auto atom = VexQTstpsAtom::initWithData(
        atomClaiming(1234, "abcd"_os, {u8(0), u8(0), u16(0), u32(1), u32(4)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 20u);
    EXPECT_EQ(atom->atomType(), "stps"_os);
    EXPECT_EQ(atom->syncSamples().size(), 1u);
}

TEST(StpsAtom, WritingStoresTheSize) {
    const auto atom = VexQTstpsAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->syncSamples().clear();
    EXPECT_EQ(atom->atomData().size(), 16u);
    EXPECT_EQ(atom->atomSize(), 16u);
}

TEST(StpsAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTstpsAtom::initWithData(
        testing::atom("stps"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5), u8(6)}), nullptr,
        0);
    EXPECT_EQ(atom->syncSamples(), (std::vector<std::uint32_t>{4}));
    EXPECT_EQ(atom->atomData(), testing::atom("stps"_os, {u8(0), u8(0), u16(0), u32(1), u32(4)}));
}

TEST(StpsAtom, AMissingEntryIsARangeError) {
    const Bytes oneEntry = join({u32(0), u32("stps"_os), u32(0), u32(2), u32(3)});
    for (const std::size_t bytesOfTheNext : {0u, 1u, 3u})
        EXPECT_EQ(missingRead<VexQTstpsAtom>(join({oneEntry, zeros(bytesOfTheNext)})),
                  (MissingRead{20, 4, 20 + bytesOfTheNext}));
}

TEST(StpsAtom, ACountBeyondAllReasonIsARangeErrorToo) {
    EXPECT_EQ(missingRead<VexQTstpsAtom>(atom("stps"_os, {u32(0), u32(0xFFFFFFFF), u32(1)})),
              (MissingRead{20, 4, 20}));
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/sampletables/VexQTstssAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

// Twice the same, and the greatest first: nothing sorts or checks them.
const Bytes kThreeNumbers = atom("stss"_os, {
                                                u8(0x05),  // version
                                                u8(0),
                                                u16(0),  // flags
                                                u32(3),  // number of entries
                                                u32(0xF1F2F3F4),
                                                u32(0x01020304),
                                                u32(0x01020304),
                                            });
const std::vector<std::uint32_t> kNumbers = {0xF1F2F3F4, 0x01020304, 0x01020304};

TEST(StssAtom, FieldsAreRead) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "stss"_os);
    EXPECT_EQ(atom->atomSize(), 28u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    EXPECT_EQ(std::as_const(*atom).syncSamples(), kNumbers);
    EXPECT_FALSE(atom->unknownData());
}

TEST(StssAtom, BytesAreWrittenBackBeforeRowsAreDecoded) {
    EXPECT_EQ(VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0)->atomData(), kThreeNumbers);
}

TEST(StssAtom, BytesAreWrittenBackAfterRowsWereDecoded) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(std::as_const(*atom).syncSamples().size(), 3u);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(StssAtom, BytesAreWrittenBackFromRowsThatMayHaveBeenEdited) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0);
    EXPECT_EQ(atom->syncSamples(), kNumbers);
    EXPECT_EQ(atom->atomData(), kThreeNumbers);
}

TEST(StssAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->syncSamples().resize(1);
    atom->syncSamples().push_back(77);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stss"_os, {u8(5), u8(0), u16(0), u32(2), u32(0xF1F2F3F4), u32(77)}));
}

TEST(StssAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->setSyncSamples({0});
    EXPECT_EQ(atom->atomData(), testing::atom("stss"_os, {u8(5), u8(0), u16(0), u32(1), u32(0)}));
}

TEST(StssAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTstssAtom atom;
    EXPECT_EQ(atom.atomType(), "stss"_os);
    EXPECT_EQ(atom.atomName(), "Sync Sample");
    EXPECT_EQ(atom.atomNibName(), "VexQTstssAtom");
    EXPECT_TRUE(atom.syncSamples().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("stss"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(StssAtom, AnEmptyTableIsWrittenBack) {
    const Bytes empty = atom("stss"_os, {u8(0), u8(0), u16(0), u32(0)});
    ASSERT_EQ(empty.size(), 16u);
    const auto atom = VexQTstssAtom::initWithData(empty, nullptr, 0);
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->syncSamples().empty());
    EXPECT_EQ(atom->atomData(), empty);
}

TEST(StssAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTstssAtom::initWithData(
        testing::atom("stss"_os, {u8(0), u8(2), u8(3), u8(4), u32(1), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), testing::atom("stss"_os, {u8(0), u8(0), u16(0), u32(1), u32(5)}));
}

TEST(StssAtom, TheGreatestNumbersAreWrittenBack) {
    const Bytes bytes =
        atom("stss"_os, {u8(0), u8(0), u16(0), u32(2), u32(0xFFFFFFFF), u32(0xFFFFFFF0)});
    const auto atom = VexQTstssAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->syncSamples(), (std::vector<std::uint32_t>{4294967295, 4294967280}));
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(StssAtom, AWiderNumberKeepsItsLowBits) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0);
    listNamed(*atom, "syncSamples").setCell(*atom, 1, 0, Value(std::uint64_t{0x0000000512345678}));
    EXPECT_EQ(atom->syncSamples()[1], 0x12345678u);
}

TEST(StssAtom, FlagsThatWereSetAreWritten) {
    VexQTstssAtom atom;
    atom.setFlags0(2);
    atom.setFlags1(3);
    atom.setFlags2(4);
    EXPECT_EQ(atom.atomData(), testing::atom("stss"_os, {u8(1), u8(2), u8(3), u8(4), u32(0)}));
}

TEST(StssAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTstssAtom::initWithData(ByteView(kThreeNumbers).first(length), nullptr, 0))
            << length;
}

TEST(StssAtom, TheSizeAndTypeReadDoNotCount) {
    const auto atom = VexQTstssAtom::initWithData(
        atomClaiming(1234, "abcd"_os, {u8(0), u8(0), u16(0), u32(1), u32(4)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 20u);
    EXPECT_EQ(atom->atomType(), "stss"_os);
    EXPECT_EQ(atom->syncSamples().size(), 1u);
}

TEST(StssAtom, WritingStoresTheSize) {
    const auto atom = VexQTstssAtom::initWithData(kThreeNumbers, nullptr, 0);
    atom->syncSamples().clear();
    EXPECT_EQ(atom->atomData().size(), 16u);
    EXPECT_EQ(atom->atomSize(), 16u);
}

TEST(StssAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTstssAtom::initWithData(
        testing::atom("stss"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5), u8(6)}), nullptr,
        0);
    EXPECT_EQ(atom->syncSamples(), (std::vector<std::uint32_t>{4}));
    EXPECT_EQ(atom->atomData(), testing::atom("stss"_os, {u8(0), u8(0), u16(0), u32(1), u32(4)}));
}

TEST(StssAtom, AMissingEntryIsARangeError) {
    const Bytes oneEntry = join({u32(0), u32("stss"_os), u32(0), u32(2), u32(3)});
    for (const std::size_t bytesOfTheNext : {0u, 1u, 3u})
        EXPECT_EQ(missingRead<VexQTstssAtom>(join({oneEntry, zeros(bytesOfTheNext)})),
                  (MissingRead{20, 4, 20 + bytesOfTheNext}));
}

TEST(StssAtom, ACountBeyondAllReasonIsARangeErrorToo) {
    EXPECT_EQ(missingRead<VexQTstssAtom>(atom("stss"_os, {u32(0), u32(0xFFFFFFFF), u32(1)})),
              (MissingRead{20, 4, 20}));
}

}  // namespace
}  // namespace vexqt

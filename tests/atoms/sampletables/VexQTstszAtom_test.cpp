#include "vexqt/atoms/sampletables/VexQTstszAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kThreeSizes = atom("stsz"_os, {
                                              u8(0x05),  // version
                                              u8(2),
                                              u8(3),
                                              u8(4),   // flags
                                              u32(0),  // sample size
                                              u32(3),  // number of entries
                                              u32(0xF1F2F3F4),
                                              u32(0x01020304),
                                              u32(0x05060708),
                                          });
const std::vector<std::uint32_t> kSizes = {0xF1F2F3F4, 0x01020304, 0x05060708};

TEST(StszAtom, FieldsAreRead) {
    const auto atom = VexQTstszAtom::initWithData(kThreeSizes, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "stsz"_os);
    EXPECT_EQ(atom->atomSize(), 32u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    EXPECT_EQ(atom->flags0(), 2);
    EXPECT_EQ(atom->flags1(), 3);
    EXPECT_EQ(atom->flags2(), 4);
    EXPECT_EQ(atom->globalSampleSize(), 0u);
    EXPECT_EQ(atom->numberOfEntries(), 3u);
    EXPECT_EQ(std::as_const(*atom).sampleSizes(), kSizes);
}

TEST(StszAtom, SizesAreWrittenBackFlagsIncluded) {
    const auto atom = VexQTstszAtom::initWithData(kThreeSizes, nullptr, 0);
    EXPECT_EQ(atom->atomData(), kThreeSizes);
    EXPECT_EQ(std::as_const(*atom).sampleSizes().size(), 3u);
    EXPECT_EQ(atom->atomData(), kThreeSizes);
    EXPECT_EQ(atom->sampleSizes().size(), 3u);
    EXPECT_EQ(atom->atomData(), kThreeSizes);
}

TEST(StszAtom, OneSizeForAllSamplesIsWrittenBackIn20Bytes) {
    const Bytes bytes = atom("stsz"_os, {u32(0), u32(512), u32(1000)});
    ASSERT_EQ(bytes.size(), 20u);
    const auto atom = VexQTstszAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->globalSampleSize(), 512u);
    EXPECT_EQ(atom->numberOfEntries(), 1000u);
    EXPECT_TRUE(atom->sampleSizes().empty());
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(StszAtom, OneSizeForAllSamplesLeavesTheSizesUnread) {
    const auto atom = VexQTstszAtom::initWithData(
        testing::atom("stsz"_os, {u32(0), u32(512), u32(2), u32(7), u32(8)}), nullptr, 0);
    EXPECT_TRUE(atom->sampleSizes().empty());
    EXPECT_EQ(atom->atomData(), testing::atom("stsz"_os, {u32(0), u32(512), u32(2)}));
}

TEST(StszAtom, OneSizeForAllSamplesLeavesTheListUnwritten) {
    const auto atom = VexQTstszAtom::initWithData(kThreeSizes, nullptr, 0);
    atom->setGlobalSampleSize(512);
    EXPECT_EQ(atom->sampleSizes(), kSizes);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stsz"_os, {u8(5), u8(2), u8(3), u8(4), u32(512), u32(3)}));
    EXPECT_EQ(atom->atomSize(), 20u);
}

TEST(StszAtom, ACountOfZeroLeavesTheSizesUnread) {
    const auto atom = VexQTstszAtom::initWithData(
        testing::atom("stsz"_os, {u32(0), u32(0), u32(0), u32(7), u32(8)}), nullptr, 0);
    EXPECT_TRUE(atom->sampleSizes().empty());
    EXPECT_EQ(atom->atomData(), testing::atom("stsz"_os, {u32(0), u32(0), u32(0)}));
}

TEST(StszAtom, FewerSizesThanTheCountEndWithTheLastWholeOne) {
    for (std::size_t cut = 0; cut <= 12; ++cut) {
        const auto atom = VexQTstszAtom::initWithData(
            ByteView(kThreeSizes).first(kThreeSizes.size() - cut), nullptr, 0);
        ASSERT_TRUE(atom);
        EXPECT_EQ(atom->sampleSizes().size(), (12 - cut) / 4) << cut;
        EXPECT_EQ(atom->numberOfEntries(), 3u);
    }
}

TEST(StszAtom, ACountBeyondAllReasonEndsWithTheBytesAndIsWrittenBack) {
    const Bytes bytes = atom("stsz"_os, {u32(0), u32(0), u32(0xFFFFFFFF), u32(7)});
    const auto atom = VexQTstszAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->sampleSizes(), (std::vector<std::uint32_t>{7}));
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(StszAtom, MoreSizesThanTheCountAreDropped) {
    const auto atom = VexQTstszAtom::initWithData(
        testing::atom("stsz"_os, {u32(0), u32(0), u32(1), u32(7), u32(8), u8(9)}), nullptr, 0);
    EXPECT_EQ(atom->sampleSizes(), (std::vector<std::uint32_t>{7}));
    EXPECT_EQ(atom->atomData(), testing::atom("stsz"_os, {u32(0), u32(0), u32(1), u32(7)}));
}

TEST(StszAtom, EditingTheListDoesNotChangeTheCount) {
    const auto atom = VexQTstszAtom::initWithData(kThreeSizes, nullptr, 0);
    atom->sampleSizes().push_back(9);
    EXPECT_EQ(atom->numberOfEntries(), 3u);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stsz"_os, {u8(5), u8(2), u8(3), u8(4), u32(0), u32(3), u32(0xF1F2F3F4),
                                        u32(0x01020304), u32(0x05060708), u32(9)}));
    EXPECT_EQ(atom->atomSize(), 36u);
}

TEST(StszAtom, ASetCountIsWritten) {
    VexQTstszAtom atom;
    atom.setSampleSizes({4, 5});
    atom.setNumberOfEntries(6);
    EXPECT_EQ(atom.atomData(),
              testing::atom("stsz"_os, {u8(1), u8(0), u16(0), u32(0), u32(6), u32(4), u32(5)}));
}

TEST(StszAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTstszAtom atom;
    EXPECT_EQ(atom.atomType(), "stsz"_os);
    EXPECT_EQ(atom.atomName(), "Sample Size");
    EXPECT_EQ(atom.atomNibName(), "VexQTstszAtom");
    EXPECT_EQ(atom.globalSampleSize(), 0u);
    EXPECT_EQ(atom.numberOfEntries(), 0u);
    EXPECT_TRUE(atom.sampleSizes().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("stsz"_os, {u8(1), u8(0), u16(0), u32(0), u32(0)}));
}

TEST(StszAtom, FewerThan20BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 16u, 19u})
        EXPECT_FALSE(VexQTstszAtom::initWithData(ByteView(kThreeSizes).first(length), nullptr, 0))
            << length;
}

}  // namespace
}  // namespace vexqt

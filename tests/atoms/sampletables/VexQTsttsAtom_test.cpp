#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kTwoRuns = atom("stts"_os, {
                                           u8(0x05),         // version
                                           u8(0), u16(0),    // flags
                                           u32(2),           // number of entries
                                           u32(0x01020304),  // sample count
                                           u32(0xF1F2F3F4),  // sampleDuration
                                           u32(0x05060708),  // sample count
                                           u32(0x090A0B0C),  // sampleDuration
                                       });

TEST(SttsAtom, FieldsAreRead) {
    const auto atom = VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "stts"_os);
    EXPECT_EQ(atom->atomSize(), 32u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    const auto& runs = std::as_const(*atom).sampleDurations();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].sampleCount(), 0x01020304u);
    EXPECT_EQ(runs[0].sampleDuration(), 0xF1F2F3F4u);
    EXPECT_EQ(runs[1].sampleCount(), 0x05060708u);
    EXPECT_EQ(runs[1].sampleDuration(), 0x090A0B0Cu);
    EXPECT_FALSE(atom->unknownData());
}

TEST(SttsAtom, BytesAreWrittenBackBeforeRowsAreDecoded) {
    EXPECT_EQ(VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 0)->atomData(), kTwoRuns);
}

TEST(SttsAtom, BytesAreWrittenBackAfterRowsWereDecoded) {
    const auto atom = VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 0);
    EXPECT_EQ(std::as_const(*atom).sampleDurations().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
}

TEST(SttsAtom, BytesAreWrittenBackFromRowsThatMayHaveBeenEdited) {
    const auto atom = VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 0);
    EXPECT_EQ(atom->sampleDurations().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
}

TEST(SttsAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->sampleDurations().erase(atom->sampleDurations().begin());
    atom->sampleDurations()[0].setSampleCount(7);
    atom->sampleDurations()[0].setSampleDuration(8);
    atom->sampleDurations().emplace_back(9, 10);
    EXPECT_EQ(atom->atomData(), testing::atom("stts"_os, {u8(5), u8(0), u16(0), u32(2), u32(7),
                                                          u32(8), u32(9), u32(10)}));
}

TEST(SttsAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->setSampleDurations({{11, 12}});
    EXPECT_EQ(atom->atomData(),
              testing::atom("stts"_os, {u8(5), u8(0), u16(0), u32(1), u32(11), u32(12)}));
}

TEST(SttsAtom, AnEntryBeginsWithZeros) {
    EXPECT_EQ(VexQTSampleDuration().sampleCount(), 0u);
    EXPECT_EQ(VexQTSampleDuration().sampleDuration(), 0u);
}

TEST(SttsAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTsttsAtom atom;
    EXPECT_EQ(atom.atomType(), "stts"_os);
    EXPECT_EQ(atom.atomName(), "Time-to-Sample");
    EXPECT_EQ(atom.atomNibName(), "VexQTsttsAtom");
    EXPECT_TRUE(atom.sampleDurations().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("stts"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(SttsAtom, AnEmptyTableIsWrittenBack) {
    const Bytes empty = atom("stts"_os, {u8(0), u8(0), u16(0), u32(0)});
    ASSERT_EQ(empty.size(), 16u);
    const auto atom = VexQTsttsAtom::initWithData(empty, nullptr, 0);
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->sampleDurations().empty());
    EXPECT_EQ(atom->atomData(), empty);
}

TEST(SttsAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTsttsAtom::initWithData(
        testing::atom("stts"_os, {u8(0), u8(1), u8(2), u8(3), u32(1), u32(4), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stts"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5)}));
}

TEST(SttsAtom, FlagsThatWereSetAreWritten) {
    VexQTsttsAtom atom;
    atom.setFlags0(1);
    atom.setFlags1(2);
    atom.setFlags2(3);
    EXPECT_EQ(atom.atomData(), testing::atom("stts"_os, {u8(1), u8(1), u8(2), u8(3), u32(0)}));
}

TEST(SttsAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTsttsAtom::initWithData(ByteView(kTwoRuns).first(length), nullptr, 0))
            << length;
}

TEST(SttsAtom, TheSizeFieldDoesNotCount) {
    const auto atom = VexQTsttsAtom::initWithData(
        atomClaiming(1234, "stts"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 24u);
    EXPECT_EQ(atom->sampleDurations().size(), 1u);
}

TEST(SttsAtom, WritingDoesNotStoreTheSize) {
    const auto atom = VexQTsttsAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->sampleDurations().clear();
    EXPECT_EQ(atom->atomData().size(), 16u);
    EXPECT_EQ(atom->atomSize(), 32u);
}

TEST(SttsAtom, TheTypeReadDoesNotCount) {
    const auto atom = VexQTsttsAtom::initWithData(
        testing::atom("abcd"_os, {u8(0), u8(0), u16(0), u32(0)}), nullptr, 0);
    EXPECT_EQ(atom->atomType(), "stts"_os);
}

TEST(SttsAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTsttsAtom::initWithData(
        testing::atom("stts"_os,
                      {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5), u32(6), u32(7), u8(8)}),
        nullptr, 0);
    ASSERT_EQ(atom->sampleDurations().size(), 1u);
    EXPECT_EQ(atom->sampleDurations()[0].sampleCount(), 4u);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stts"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5)}));
}

TEST(SttsAtom, AMissingEntryIsARangeErrorAtItsFirstMissingField) {
    const Bytes oneEntry = join({u32(0), u32("stts"_os), u32(0), u32(2), u32(3), u32(4)});
    const struct {
        std::size_t bytesOfTheNext;
        MissingRead read;
    } cases[] = {
        {0, {24, 4, 24}}, {1, {24, 4, 25}}, {3, {24, 4, 27}},
        {4, {28, 4, 28}}, {5, {28, 4, 29}}, {7, {28, 4, 31}},
    };
    for (const auto& [bytesOfTheNext, read] : cases)
        EXPECT_EQ(missingRead<VexQTsttsAtom>(join({oneEntry, zeros(bytesOfTheNext)})), read);
}

TEST(SttsAtom, ACountBeyondAllReasonIsARangeErrorToo) {
    EXPECT_EQ(
        missingRead<VexQTsttsAtom>(atom("stts"_os, {u32(0), u32(0xFFFFFFFF), u32(1), u32(2)})),
        (MissingRead{24, 4, 24}));
}

}  // namespace
}  // namespace vexqt

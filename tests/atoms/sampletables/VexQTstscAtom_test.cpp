#include "vexqt/atoms/sampletables/VexQTstscAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kTwoRuns = atom("stsc"_os, {
                                           u8(0x05),         // version
                                           u8(0), u16(0),    // flags
                                           u32(2),           // number of entries
                                           u32(0x01020304),  // first chunk
                                           u32(0xF1F2F3F4),  // samples per chunk
                                           u32(0x05060708),  // sample description ID
                                           u32(0x11121314),  // first chunk
                                           u32(0x15161718),  // samples per chunk
                                           u32(0x191A1B1C),  // sample description ID
                                       });

TEST(StscAtom, FieldsAreRead) {
    const auto atom = VexQTstscAtom::initWithData(kTwoRuns, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "stsc"_os);
    EXPECT_EQ(atom->atomSize(), 40u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    const auto& runs = std::as_const(*atom).sampleToChunkEntries();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].firstChunk(), 0x01020304u);
    EXPECT_EQ(runs[0].samplesPerChunk(), 0xF1F2F3F4u);
    EXPECT_EQ(runs[0].sampleDescriptionID(), 0x05060708u);
    EXPECT_EQ(runs[1].firstChunk(), 0x11121314u);
    EXPECT_EQ(runs[1].samplesPerChunk(), 0x15161718u);
    EXPECT_EQ(runs[1].sampleDescriptionID(), 0x191A1B1Cu);
}

TEST(StscAtom, BytesAreWrittenBackWhetherRowsWereDecodedOrEditedOrNeither) {
    const auto atom = VexQTstscAtom::initWithData(kTwoRuns, nullptr, 0);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
    EXPECT_EQ(std::as_const(*atom).sampleToChunkEntries().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
    EXPECT_EQ(atom->sampleToChunkEntries().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
}

TEST(StscAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTstscAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->sampleToChunkEntries().pop_back();
    atom->sampleToChunkEntries()[0].setFirstChunk(1);
    atom->sampleToChunkEntries()[0].setSamplesPerChunk(2);
    atom->sampleToChunkEntries()[0].setSampleDescriptionID(3);
    atom->sampleToChunkEntries().push_back(
        VexQTSampleToChunkEntry::sampleToChunkEntryWithFirstChunk(4, 5, 6));
    atom->sampleToChunkEntries().emplace_back(7, 8, 9);
    EXPECT_EQ(atom->atomData(),
              testing::atom("stsc"_os, {u8(5), u8(0), u16(0), u32(3), u32(1), u32(2), u32(3),
                                        u32(4), u32(5), u32(6), u32(7), u32(8), u32(9)}));
    EXPECT_EQ(atom->atomSize(), 52u);
}

TEST(StscAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTstscAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->setSampleToChunkEntries({{1, 2, 3}});
    EXPECT_EQ(atom->atomData(),
              testing::atom("stsc"_os, {u8(5), u8(0), u16(0), u32(1), u32(1), u32(2), u32(3)}));
}

TEST(StscAtom, AnEntryBeginsWithZeros) {
    EXPECT_EQ(VexQTSampleToChunkEntry().firstChunk(), 0u);
    EXPECT_EQ(VexQTSampleToChunkEntry().samplesPerChunk(), 0u);
    EXPECT_EQ(VexQTSampleToChunkEntry().sampleDescriptionID(), 0u);
}

TEST(StscAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTstscAtom atom;
    EXPECT_EQ(atom.atomType(), "stsc"_os);
    EXPECT_EQ(atom.atomName(), "Sample-to-Chunk");
    EXPECT_EQ(atom.atomNibName(), "VexQTstscAtom");
    EXPECT_TRUE(atom.sampleToChunkEntries().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("stsc"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(StscAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTstscAtom::initWithData(
        testing::atom("stsc"_os, {u8(0), u8(2), u8(3), u8(4), u32(0)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), testing::atom("stsc"_os, {u8(0), u8(0), u16(0), u32(0)}));
}

TEST(StscAtom, FlagsThatWereSetAreWritten) {
    VexQTstscAtom atom;
    atom.setFlags0(2);
    atom.setFlags1(3);
    atom.setFlags2(4);
    EXPECT_EQ(atom.atomData(), testing::atom("stsc"_os, {u8(1), u8(2), u8(3), u8(4), u32(0)}));
}

TEST(StscAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTstscAtom::initWithData(ByteView(kTwoRuns).first(length), nullptr, 0))
            << length;
}

TEST(StscAtom, AnEntryThatIsCutShortEndsTheTable) {
    for (std::size_t cut = 1; cut <= 12; ++cut) {
        const auto atom = VexQTstscAtom::initWithData(
            ByteView(kTwoRuns).first(kTwoRuns.size() - cut), nullptr, 0);
        ASSERT_TRUE(atom);
        ASSERT_EQ(atom->sampleToChunkEntries().size(), 1u) << cut;
        EXPECT_EQ(atom->sampleToChunkEntries()[0].sampleDescriptionID(), 0x05060708u);
    }
}

TEST(StscAtom, ACountBeyondAllReasonEndsWithTheBytes) {
    const auto atom = VexQTstscAtom::initWithData(
        testing::atom("stsc"_os, {u32(0), u32(0xFFFFFFFF), u32(1), u32(2), u32(3)}), nullptr, 0);
    EXPECT_EQ(atom->sampleToChunkEntries().size(), 1u);
    EXPECT_EQ(atom->atomData(), testing::atom("stsc"_os, {u32(0), u32(1), u32(1), u32(2), u32(3)}));
}

TEST(StscAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTstscAtom::initWithData(
        testing::atom("stsc"_os, {u32(0), u32(1), u32(1), u32(2), u32(3), zeros(13)}), nullptr, 0);
    EXPECT_EQ(atom->sampleToChunkEntries().size(), 1u);
    EXPECT_EQ(atom->atomData(), testing::atom("stsc"_os, {u32(0), u32(1), u32(1), u32(2), u32(3)}));
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kTwoRuns = atom("ctts"_os, {
                                           u8(0x05),         // version
                                           u8(0), u16(0),    // flags
                                           u32(2),           // number of entries
                                           u32(0x01020304),  // sample count
                                           u32(0xF1F2F3F4),  // compositionOffset
                                           u32(0x05060708),  // sample count
                                           u32(0x090A0B0C),  // compositionOffset
                                       });

TEST(CttsAtom, FieldsAreRead) {
    const auto atom = VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "ctts"_os);
    EXPECT_EQ(atom->atomSize(), 32u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    const auto& runs = std::as_const(*atom).compositionOffsets();
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].sampleCount(), 0x01020304u);
    EXPECT_EQ(runs[0].compositionOffset(), 0xF1F2F3F4u);
    EXPECT_EQ(runs[1].sampleCount(), 0x05060708u);
    EXPECT_EQ(runs[1].compositionOffset(), 0x090A0B0Cu);
    EXPECT_FALSE(atom->unknownData());
}

TEST(CttsAtom, BytesAreWrittenBackBeforeRowsAreDecoded) {
    EXPECT_EQ(VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 0)->atomData(), kTwoRuns);
}

TEST(CttsAtom, BytesAreWrittenBackAfterRowsWereDecoded) {
    const auto atom = VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 0);
    EXPECT_EQ(std::as_const(*atom).compositionOffsets().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
}

TEST(CttsAtom, BytesAreWrittenBackFromRowsThatMayHaveBeenEdited) {
    const auto atom = VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 0);
    EXPECT_EQ(atom->compositionOffsets().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoRuns);
}

TEST(CttsAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->compositionOffsets().erase(atom->compositionOffsets().begin());
    atom->compositionOffsets()[0].setSampleCount(7);
    atom->compositionOffsets()[0].setCompositionOffset(8);
    atom->compositionOffsets().emplace_back(9, 10);
    EXPECT_EQ(atom->atomData(), testing::atom("ctts"_os, {u8(5), u8(0), u16(0), u32(2), u32(7),
                                                          u32(8), u32(9), u32(10)}));
}

TEST(CttsAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->setCompositionOffsets({{11, 12}});
    EXPECT_EQ(atom->atomData(),
              testing::atom("ctts"_os, {u8(5), u8(0), u16(0), u32(1), u32(11), u32(12)}));
}

TEST(CttsAtom, AnEntryBeginsWithZeros) {
    EXPECT_EQ(VexQTCompositionOffset().sampleCount(), 0u);
    EXPECT_EQ(VexQTCompositionOffset().compositionOffset(), 0u);
}

TEST(CttsAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTcttsAtom atom;
    EXPECT_EQ(atom.atomType(), "ctts"_os);
    EXPECT_EQ(atom.atomName(), "Composition Offset");
    EXPECT_EQ(atom.atomNibName(), "VexQTcttsAtom");
    EXPECT_TRUE(atom.compositionOffsets().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("ctts"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(CttsAtom, AnEmptyTableIsWrittenBack) {
    const Bytes empty = atom("ctts"_os, {u8(0), u8(0), u16(0), u32(0)});
    ASSERT_EQ(empty.size(), 16u);
    const auto atom = VexQTcttsAtom::initWithData(empty, nullptr, 0);
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->compositionOffsets().empty());
    EXPECT_EQ(atom->atomData(), empty);
}

TEST(CttsAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTcttsAtom::initWithData(
        testing::atom("ctts"_os, {u8(0), u8(1), u8(2), u8(3), u32(1), u32(4), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(),
              testing::atom("ctts"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5)}));
}

TEST(CttsAtom, FlagsThatWereSetAreNotWritten) {
    VexQTcttsAtom atom;
    atom.setFlags0(1);
    atom.setFlags1(2);
    atom.setFlags2(3);
    EXPECT_EQ(atom.atomData(), testing::atom("ctts"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(CttsAtom, ANegativeOffsetOfVersion1StaysTheBitsThatItIs) {
    const Bytes bytes = atom("ctts"_os, {u8(1), u8(0), u16(0), u32(1), u32(6), u32(0xFFFFFFFF)});
    const auto atom = VexQTcttsAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->compositionOffsets()[0].compositionOffset(), 4294967295u);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(CttsAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTcttsAtom::initWithData(ByteView(kTwoRuns).first(length), nullptr, 0))
            << length;
}

TEST(CttsAtom, TheSizeFieldDoesNotCount) {
    const auto atom = VexQTcttsAtom::initWithData(
        atomClaiming(1234, "ctts"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 24u);
    EXPECT_EQ(atom->compositionOffsets().size(), 1u);
}

TEST(CttsAtom, WritingDoesNotStoreTheSize) {
    const auto atom = VexQTcttsAtom::initWithData(kTwoRuns, nullptr, 0);
    atom->compositionOffsets().clear();
    EXPECT_EQ(atom->atomData().size(), 16u);
    EXPECT_EQ(atom->atomSize(), 32u);
}

TEST(CttsAtom, TheTypeReadDoesNotCount) {
    const auto atom = VexQTcttsAtom::initWithData(
        testing::atom("abcd"_os, {u8(0), u8(0), u16(0), u32(0)}), nullptr, 0);
    EXPECT_EQ(atom->atomType(), "ctts"_os);
}

TEST(CttsAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTcttsAtom::initWithData(
        testing::atom("ctts"_os,
                      {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5), u32(6), u32(7), u8(8)}),
        nullptr, 0);
    ASSERT_EQ(atom->compositionOffsets().size(), 1u);
    EXPECT_EQ(atom->compositionOffsets()[0].sampleCount(), 4u);
    EXPECT_EQ(atom->atomData(),
              testing::atom("ctts"_os, {u8(0), u8(0), u16(0), u32(1), u32(4), u32(5)}));
}

TEST(CttsAtom, AMissingEntryIsARangeErrorAtItsFirstMissingField) {
    const Bytes oneEntry = join({u32(0), u32("ctts"_os), u32(0), u32(2), u32(3), u32(4)});
    const struct {
        std::size_t bytesOfTheNext;
        MissingRead read;
    } cases[] = {
        {0, {24, 4, 24}}, {1, {24, 4, 25}}, {3, {24, 4, 27}},
        {4, {28, 4, 28}}, {5, {28, 4, 29}}, {7, {28, 4, 31}},
    };
    for (const auto& [bytesOfTheNext, read] : cases)
        EXPECT_EQ(missingRead<VexQTcttsAtom>(join({oneEntry, zeros(bytesOfTheNext)})), read);
}

TEST(CttsAtom, ACountBeyondAllReasonIsARangeErrorToo) {
    EXPECT_EQ(
        missingRead<VexQTcttsAtom>(atom("ctts"_os, {u32(0), u32(0xFFFFFFFF), u32(1), u32(2)})),
        (MissingRead{24, 4, 24}));
}

}  // namespace
}  // namespace vexqt

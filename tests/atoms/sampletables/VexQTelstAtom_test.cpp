#include "vexqt/atoms/sampletables/VexQTelstAtom.h"

#include "atoms/sampletables/tables.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kTwoEdits = atom("elst"_os, {
                                            u8(0x05),         // version
                                            u8(0), u16(0),    // flags
                                            u32(2),           // number of entries
                                            u32(0xF1F2F3F4),  // track duration
                                            u32(0xFFFFFFFF),  // media time
                                            u32(0x00010000),  // media rate
                                            u32(0x11121314),  // track duration
                                            u32(0x15161718),  // media time
                                            u32(0x00028000),  // media rate
                                        });

TEST(ElstAtom, FieldsAreRead) {
    const auto atom = VexQTelstAtom::initWithData(kTwoEdits, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "elst"_os);
    EXPECT_EQ(atom->atomSize(), 40u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    EXPECT_EQ(atom->version(), 5);
    const auto& edits = std::as_const(*atom).editListEntries();
    ASSERT_EQ(edits.size(), 2u);
    EXPECT_EQ(edits[0].trackDuration(), 0xF1F2F3F4u);
    EXPECT_EQ(edits[0].mediaTime(), 4294967295u);
    EXPECT_EQ(edits[0].mediaRate(), 1.0);
    EXPECT_EQ(edits[1].trackDuration(), 0x11121314u);
    EXPECT_EQ(edits[1].mediaTime(), 0x15161718u);
    EXPECT_EQ(edits[1].mediaRate(), 2.5);
}

TEST(ElstAtom, BytesAreWrittenBackWhetherRowsWereDecodedOrEditedOrNeither) {
    const auto atom = VexQTelstAtom::initWithData(kTwoEdits, nullptr, 0);
    EXPECT_EQ(atom->atomData(), kTwoEdits);
    EXPECT_EQ(std::as_const(*atom).editListEntries().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoEdits);
    EXPECT_EQ(atom->editListEntries().size(), 2u);
    EXPECT_EQ(atom->atomData(), kTwoEdits);
}

TEST(ElstAtom, ANegativeRateReadsOneLowerAndIsWrittenAsWhatWasRead) {
    const auto edit = [](std::uint32_t rate) {
        return atom("elst"_os, {u32(0), u32(1), u32(2), u32(3), u32(rate)});
    };
    const auto atom = VexQTelstAtom::initWithData(edit(0xFFFF0000), nullptr, 0);
    EXPECT_EQ(atom->atomData(), edit(0xFFFE0000));
    EXPECT_EQ(std::as_const(*atom).editListEntries()[0].mediaRate(), -2.0);
    EXPECT_EQ(atom->atomData(), edit(0xFFFE0000));
}

TEST(ElstAtom, EditsOfTheListAreWritten) {
    const auto atom = VexQTelstAtom::initWithData(kTwoEdits, nullptr, 0);
    atom->editListEntries().pop_back();
    atom->editListEntries()[0].setTrackDuration(1);
    atom->editListEntries()[0].setMediaTime(2);
    atom->editListEntries()[0].setMediaRate(0.5);
    atom->editListEntries().emplace_back();
    EXPECT_EQ(atom->atomData(),
              testing::atom("elst"_os, {u8(5), u8(0), u16(0), u32(2), u32(1), u32(2),
                                        u32(0x00008000), u32(0), u32(0), u32(0)}));
    EXPECT_EQ(atom->atomSize(), 40u);
}

TEST(ElstAtom, ASetListReplacesTheOneThatWasRead) {
    const auto atom = VexQTelstAtom::initWithData(kTwoEdits, nullptr, 0);
    atom->setEditListEntries({VexQTEditListEntry()});
    EXPECT_EQ(atom->atomData(),
              testing::atom("elst"_os, {u8(5), u8(0), u16(0), u32(1), u32(0), u32(0), u32(0)}));
}

TEST(ElstAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTelstAtom atom;
    EXPECT_EQ(atom.atomType(), "elst"_os);
    EXPECT_EQ(atom.atomName(), "Edit List");
    EXPECT_EQ(atom.atomNibName(), "VexQTelstAtom");
    EXPECT_TRUE(atom.editListEntries().empty());
    EXPECT_EQ(atom.atomData(), testing::atom("elst"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(ElstAtom, FlagsAreNotReadAndAreWrittenAsZero) {
    const auto atom = VexQTelstAtom::initWithData(
        testing::atom("elst"_os, {u8(0), u8(2), u8(3), u8(4), u32(0)}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->flags1(), 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), testing::atom("elst"_os, {u8(0), u8(0), u16(0), u32(0)}));
}

TEST(ElstAtom, FlagsThatWereSetAreWritten) {
    VexQTelstAtom atom;
    atom.setFlags0(2);
    atom.setFlags1(3);
    atom.setFlags2(4);
    EXPECT_EQ(atom.atomData(), testing::atom("elst"_os, {u8(1), u8(2), u8(3), u8(4), u32(0)}));
}

TEST(ElstAtom, EntriesOfVersion1AreReadAsIfTheyHad12Bytes) {
    const auto atom = VexQTelstAtom::initWithData(
        testing::atom("elst"_os, {u8(1), u8(0), u16(0), u32(1), u64(0x0000000600000007), u64(8),
                                  u32(0x00010000)}),
        nullptr, 0);
    ASSERT_EQ(atom->editListEntries().size(), 1u);
    EXPECT_EQ(atom->editListEntries()[0].trackDuration(), 6u);
    EXPECT_EQ(atom->editListEntries()[0].mediaTime(), 7u);
    EXPECT_EQ(atom->editListEntries()[0].mediaRate(), 0.0);
    EXPECT_EQ(atom->atomData(),
              testing::atom("elst"_os, {u8(1), u8(0), u16(0), u32(1), u32(6), u32(7), u32(0)}));
}

TEST(ElstAtom, FewerThan16BytesGiveNoAtom) {
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTelstAtom::initWithData(ByteView(kTwoEdits).first(length), nullptr, 0))
            << length;
}

TEST(ElstAtom, AMissingEntryIsARangeErrorOfItsTwelveBytes) {
    for (std::size_t cut = 1; cut <= 12; ++cut)
        EXPECT_EQ(missingRead<VexQTelstAtom>(ByteView(kTwoEdits).first(40 - cut)),
                  (MissingRead{28, 12, 40 - cut}));
}

TEST(ElstAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto atom = VexQTelstAtom::initWithData(
        testing::atom("elst"_os, {u32(0), u32(1), u32(1), u32(2), u32(3), zeros(13)}), nullptr, 0);
    EXPECT_EQ(atom->editListEntries().size(), 1u);
    EXPECT_EQ(atom->atomData(), testing::atom("elst"_os, {u32(0), u32(1), u32(1), u32(2), u32(3)}));
}

TEST(EditListEntry, BeginsWithZeros) {
    EXPECT_EQ(VexQTEditListEntry().trackDuration(), 0u);
    EXPECT_EQ(VexQTEditListEntry().mediaTime(), 0u);
    EXPECT_EQ(VexQTEditListEntry().mediaRate(), 0.0);
}

TEST(EditListEntry, IsReadFromItsTwelveBytesAndWrittenBack) {
    const Bytes bytes = join({u32(0xF1F2F3F4), u32(0x05060708), u32(0x00038000)});
    const auto entry = VexQTEditListEntry::initWithData(bytes);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->trackDuration(), 0xF1F2F3F4u);
    EXPECT_EQ(entry->mediaTime(), 0x05060708u);
    EXPECT_EQ(entry->mediaRate(), 3.5);
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(EditListEntry, AnyOtherNumberOfBytesGivesNoEntry) {
    for (const std::size_t length : {0u, 11u, 13u, 20u})
        EXPECT_FALSE(VexQTEditListEntry::initWithData(zeros(length))) << length;
}

}  // namespace
}  // namespace vexqt

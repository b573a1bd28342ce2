#include "vexqt/atoms/sampletables/VexQTdrefAtom.h"

#include "atoms/sampletables/tables.h"
#include "vexqt/atoms/structure/VexQTdinfAtom.h"

namespace vexqt {
namespace {

using namespace testing;

const Bytes kSameFile = atom("alis"_os, {u8(0), u8(0), u8(0), u8(1)});

TEST(DrefAtom, AReferenceToTheSameFileIsWrittenBack) {
    const Bytes bytes = atom("dref"_os, {u8(0), u8(0), u16(0), u32(1), kSameFile});
    const auto atom = VexQTdrefAtom::initWithData(bytes, nullptr, 4000);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->atomType(), "dref"_os);
    EXPECT_EQ(atom->atomSize(), 28u);
    EXPECT_EQ(atom->offsetInFile(), 4000u);
    ASSERT_EQ(atom->children().size(), 1u);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(DrefAtom, EntriesAreItsChildrenInFileOrder) {
    const auto dref = VexQTdrefAtom::initWithData(
        atom("dref"_os,
             {u8(7), u8(0), u16(0), u32(2), atom("url "_os, {u32(0), text("here")}), kSameFile}),
        nullptr, 4000);
    EXPECT_EQ(dref->version(), 7);
    ASSERT_EQ(dref->children().size(), 2u);
    const VexQTAtom& first = *dref->children()[0];
    EXPECT_EQ(first.atomType(), "url "_os);
    EXPECT_EQ(first.parent(), dref.get());
    EXPECT_EQ(first.offsetInFile(), 4016u);
    EXPECT_EQ(first.unknownData(), text("here"));
    const VexQTAtom& second = *dref->children()[1];
    EXPECT_EQ(second.atomType(), "alis"_os);
    EXPECT_EQ(second.parent(), dref.get());
    EXPECT_EQ(second.offsetInFile(), 4032u);
    EXPECT_EQ(dref->description(), " 'dref' (44)\r\n   'url ' (16)\r\n   'alis' (12)");
}

TEST(DrefAtom, AnEmptyTableIsWrittenIn16Bytes) {
    const Bytes bytes = atom("dref"_os, {u8(0), u8(0), u16(0), u32(0)});
    const auto dref = VexQTdrefAtom::initWithData(bytes, nullptr, 0);
    EXPECT_TRUE(dref->children().empty());
    EXPECT_EQ(dref->atomData(), bytes);
}

TEST(DrefAtom, AnAtomMadeInMemoryIsEmpty) {
    VexQTdrefAtom dref;
    EXPECT_EQ(dref.atomType(), "dref"_os);
    EXPECT_EQ(dref.atomName(), "Data Reference");
    EXPECT_EQ(dref.atomNibName(), "VexQTdrefAtom");
    EXPECT_FALSE(dref.unknownData());
    EXPECT_EQ(dref.atomData(), atom("dref"_os, {u8(1), u8(0), u16(0), u32(0)}));
}

TEST(DrefAtom, FlagsAreNotReadAndThoseThatWereSetAreWritten) {
    const auto dref = VexQTdrefAtom::initWithData(
        atom("dref"_os, {u8(0), u8(2), u8(3), u8(4), u32(0)}), nullptr, 0);
    EXPECT_EQ(dref->flags0(), 0);
    EXPECT_EQ(dref->flags1(), 0);
    EXPECT_EQ(dref->flags2(), 0);
    dref->setFlags0(5);
    dref->setFlags1(6);
    dref->setFlags2(7);
    EXPECT_EQ(dref->atomData(), atom("dref"_os, {u8(0), u8(5), u8(6), u8(7), u32(0)}));
}

TEST(DrefAtom, ThePayloadStaysAsTheRawRemainderAndIsNotWritten) {
    const auto dref = VexQTdrefAtom::initWithData(
        atom("dref"_os, {u8(0), u8(2), u8(3), u8(4), u32(1), kSameFile}), nullptr, 0);
    EXPECT_EQ(dref->unknownData(), join({u8(0), u8(2), u8(3), u8(4), u32(1), kSameFile}));
    dref->children().clear();
    EXPECT_EQ(dref->atomData(), atom("dref"_os, {u32(0), u32(0)}));
    EXPECT_EQ(dref->atomSize(), 16u);
}

TEST(DrefAtom, TheCountWrittenIsThatOfTheChildren) {
    const auto dref =
        VexQTdrefAtom::initWithData(atom("dref"_os, {u32(0), u32(1), kSameFile}), nullptr, 0);
    dref->addChild(VexQTDataReference::initWithData(kSameFile, dref.get(), 0));
    EXPECT_EQ(dref->atomData(), atom("dref"_os, {u32(0), u32(2), kSameFile, kSameFile}));
    EXPECT_EQ(dref->atomSize(), 40u);
}

TEST(DrefAtom, TheSizeReadIsKeptUntilItIsWritten) {
    const auto dref =
        VexQTdrefAtom::initWithData(atomClaiming(1234, "dref"_os, {u32(0), u32(0)}), nullptr, 0);
    EXPECT_EQ(dref->atomSize(), 1234u);
    EXPECT_EQ(dref->atomData(), atom("dref"_os, {u32(0), u32(0)}));
    EXPECT_EQ(dref->atomSize(), 16u);
}

TEST(DrefAtom, ASizeOfZeroCountsWhatFollowsTheHeader) {
    EXPECT_EQ(VexQTdrefAtom::initWithData(atomClaiming(0, "dref"_os, {u32(0), u32(0)}), nullptr, 0)
                  ->atomSize(),
              8u);
}

TEST(DrefAtom, FieldsLieBehindAShortHeaderEvenWhenTheSizeIsExtended) {
    const auto dref = VexQTdrefAtom::initWithData(
        extendedAtomClaiming(0x0700000000000001, "dref"_os, {kSameFile}), nullptr, 0);
    EXPECT_EQ(dref->version(), 7);
    ASSERT_EQ(dref->children().size(), 1u);
    EXPECT_EQ(dref->children()[0]->offsetInFile(), 16u);
    EXPECT_EQ(dref->unknownData(), kSameFile);
    EXPECT_EQ(dref->atomSize(), 0x0700000000000001u - 16);
}

TEST(DrefAtom, TheTypeReadDoesNotCount) {
    EXPECT_EQ(
        VexQTdrefAtom::initWithData(atom("abcd"_os, {u32(0), u32(0)}), nullptr, 0)->atomType(),
        "dref"_os);
}

TEST(DrefAtom, FewerThan16BytesGiveNoAtom) {
    const Bytes bytes = atom("dref"_os, {u32(0), u32(0)});
    for (const std::size_t length : {0u, 8u, 15u})
        EXPECT_FALSE(VexQTdrefAtom::initWithData(ByteView(bytes).first(length), nullptr, 0))
            << length;
}

TEST(DrefAtom, EntriesEndWithTheBytesWhateverTheCountSays) {
    for (const std::size_t rest : {0u, 1u, 3u}) {
        const auto dref = VexQTdrefAtom::initWithData(
            atom("dref"_os, {u32(0), u32(0xFFFFFFFF), kSameFile, zeros(rest)}), nullptr, 0);
        EXPECT_EQ(dref->children().size(), 1u);
        EXPECT_EQ(dref->atomData(), atom("dref"_os, {u32(0), u32(1), kSameFile}));
    }
}

TEST(DrefAtom, BytesBehindTheCountedEntriesAreDropped) {
    const auto dref = VexQTdrefAtom::initWithData(
        atom("dref"_os, {u32(0), u32(1), kSameFile, kSameFile}), nullptr, 0);
    EXPECT_EQ(dref->children().size(), 1u);
    EXPECT_EQ(dref->atomData(), atom("dref"_os, {u32(0), u32(1), kSameFile}));
}

TEST(DrefAtom, AnEntryThatReachesPastTheEndIsARangeError) {
    EXPECT_EQ(missingRead<VexQTdrefAtom>(
                  atom("dref"_os, {u32(0), u32(1), atomClaiming(13, "alis"_os, {u32(1)})})),
              (MissingRead{16, 13, 28}));
    EXPECT_EQ(missingRead<VexQTdrefAtom>(atom("dref"_os, {u32(0), u32(1), u32(5)})),
              (MissingRead{16, 5, 20}));
}

TEST(DrefAtom, AnEntryTooShortForItsOwnFieldsIsARangeErrorOfItsOwnBytes) {
    const struct {
        std::uint32_t size;
        MissingRead read;
    } cases[] = {
        {1, {0, 4, 1}}, {4, {4, 4, 4}},    {7, {4, 4, 7}},    {8, {9, 1, 8}},
        {9, {9, 1, 9}}, {10, {10, 1, 10}}, {11, {11, 1, 11}},
    };
    for (const auto& [size, read] : cases) {
        SCOPED_TRACE(size);
        EXPECT_EQ(
            missingRead<VexQTdrefAtom>(atom("dref"_os, {u32(0), u32(1), u32(size), zeros(8)})),
            read);
    }
}

TEST(DrefAtom, AnEntryOfSizeZeroIsARangeError) {
    EXPECT_THROW(VexQTdrefAtom::initWithData(atom("dref"_os, {u32(0), u32(1), u32(0), zeros(8)}),
                                             nullptr, 0),
                 RangeError);
}

TEST(DrefAtom, AnErrorNamesTheEntry) {
    try {
        VexQTdrefAtom::initWithData(
            atom("dref"_os, {u32(0), u32(3), kSameFile, kSameFile, atom("alis"_os)}), nullptr,
            4000);
        FAIL() << "nothing is raised";
    } catch (const RangeError& error) {
        EXPECT_EQ(error.path(), "dref.alis[2]");
        EXPECT_EQ(error.offsetInFile(), 4040u);
    }
}

TEST(DrefAtom, ATolerantReadingKeepsABrokenEntryWithItsBytes) {
    const Bytes dinf =
        atom("dinf"_os, {atom("dref"_os, {u32(0), u32(3), kSameFile, atom("url "_os), kSameFile})});
    std::vector<Problem> problems;
    ReadContext context(problems);
    const auto tree =
        VexQTAtom::make(VexQTdinfAtom::kClass, SharedBytes::copyOf(dinf), nullptr, 0, context);
    const auto& entries = tree->children().at(0)->children();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[1]->declinedClass(), "VexQTDataReference");
    EXPECT_EQ(entries[2]->atomType(), "alis"_os);
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(tree->atomData(), dinf);
}

TEST(DrefAtom, ATolerantReadingEndsAtAnEntryWithoutASize) {
    const Bytes dinf =
        atom("dinf"_os, {atom("dref"_os, {u32(0), u32(0xFFFFFFFF), u32(0), zeros(8)})});
    std::vector<Problem> problems;
    ReadContext context(problems);
    const auto tree =
        VexQTAtom::make(VexQTdinfAtom::kClass, SharedBytes::copyOf(dinf), nullptr, 0, context);
    EXPECT_EQ(tree->children().at(0)->children().size(), 1u);
    EXPECT_EQ(problems.size(), 1u);
}

TEST(DataReference, ALocationLosesItsVersionAndFlagsButNotItsSizeField) {
    const Bytes bytes = atom("url "_os, {u8(9), u8(2), u8(3), u8(4), text("http://here/")});
    const auto entry = VexQTDataReference::initWithData(bytes, nullptr, 4000);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->atomType(), "url "_os);
    EXPECT_EQ(entry->flags0(), 2);
    EXPECT_EQ(entry->flags1(), 3);
    EXPECT_EQ(entry->flags2(), 4);
    EXPECT_EQ(entry->version(), 1);  // Not the 9 that was read.
    EXPECT_EQ(entry->unknownData(), text("http://here/"));
    EXPECT_EQ(entry->atomData(), atomClaiming(24, "url "_os, {text("http://here/")}));
}

TEST(DataReference, TheSameFileHasAnEmptyPayloadEvenWhenBytesFollow) {
    const auto entry = VexQTDataReference::initWithData(
        atom("alis"_os, {u8(0), u8(2), u8(3), u8(1), text("lost")}), nullptr, 0);
    EXPECT_EQ(entry->unknownData(), Bytes());
    EXPECT_EQ(entry->flags0(), 2);
    EXPECT_EQ(entry->flags1(), 3);
    EXPECT_EQ(entry->flags2(), 1);
    EXPECT_EQ(entry->atomData(), atomClaiming(16, "alis"_os, {u32(1)}));
}

TEST(DataReference, AnEmptyPayloadIsWrittenAsTheSameFileWhateverTheFlags) {
    const auto entry =
        VexQTDataReference::initWithData(atom("alis"_os, {u8(9), u8(2), u8(3), u8(4)}), nullptr, 0);
    EXPECT_EQ(entry->unknownData(), Bytes());
    EXPECT_EQ(entry->atomData(), atom("alis"_os, {u32(1)}));
}

TEST(DataReference, OnlyAFlagOf1IsTheSameFile) {
    const auto entry =
        VexQTDataReference::initWithData(atom("alis"_os, {u32(3), text("kept")}), nullptr, 0);
    EXPECT_EQ(entry->unknownData(), text("kept"));
}

TEST(DataReference, ItsSizeIsWorkedOutFromThePayload) {
    const auto withPayload = VexQTDataReference::initWithData(
        atomClaiming(99, "url "_os, {u32(0), text("here!")}), nullptr, 0);
    EXPECT_EQ(withPayload->atomSize(), 13u);
    EXPECT_EQ(withPayload->valueForKey("size"), Value(13u));
    EXPECT_EQ(withPayload->description(), " 'url ' (99)");
    const auto without =
        VexQTDataReference::initWithData(atomClaiming(99, "alis"_os, {u32(1)}), nullptr, 0);
    EXPECT_EQ(without->atomSize(), 12u);
    EXPECT_EQ(without->description(), " 'alis' (99)");
}

TEST(DataReference, OneMadeInMemoryHasAnEmptyPayload) {
    VexQTDataReference entry;
    EXPECT_EQ(entry.atomType(), "????"_os);
    EXPECT_EQ(entry.atomName(), "Data Reference Entry");
    EXPECT_EQ(entry.atomNibName(), "VexQTDataReference");
    EXPECT_EQ(entry.unknownData(), Bytes());
    EXPECT_EQ(entry.atomSize(), 12u);
    EXPECT_EQ(entry.atomData(), atomClaiming(8, "????"_os, {u32(1)}));
}

TEST(DataReference, ASizeBeyond4GiBIsWrittenInAnExtendedHeader) {
    const Bytes bytes = extendedAtomClaiming(0x100000020, "url "_os, {text("abc")});
    const auto entry = VexQTDataReference::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(entry->flags2(), 1);  // Where a short header puts the flags.
    EXPECT_EQ(entry->atomData(), extendedAtomClaiming(0x100000010, "url "_os, {u32(1)}));
}

TEST(DataReference, FewerThan12BytesAreARangeError) {
    EXPECT_EQ(missingRead<VexQTDataReference>(zeros(7)), (MissingRead{4, 4, 7}));
    EXPECT_EQ(missingRead<VexQTDataReference>(atom("alis"_os)), (MissingRead{9, 1, 8}));
    EXPECT_EQ(missingRead<VexQTDataReference>(atom("alis"_os, {zeros(3)})),
              (MissingRead{11, 1, 11}));
}

}  // namespace
}  // namespace vexqt

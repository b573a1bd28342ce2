#include "vexqt/atoms/sampledescriptions/VexQTmetaSampleDescription.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/sampledescriptions/VexQTmebxkeysAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kKeys =
    atom("keys"_os, {atom(0x01020304, {atom("keyd"_os, {text("mdta"), text("a.b")}),
                                       atom("dtyp"_os, {u64(0x05060708090A0B0C)})})});

Bytes entryWith(std::initializer_list<ByteView> children) {
    return atom("mebx"_os, {zeros(6), u16(1), join(children)});
}

std::unique_ptr<VexQTmetaSampleDescription> read(ByteView bytes) {
    return VexQTmetaSampleDescription::initWithData(bytes, nullptr, 1000);
}

TEST(MetaSampleDescription, ReadsItsKeyTable) {
    VexQTAtom parent;
    const Bytes bytes = entryWith({kKeys});
    const auto entry = VexQTmetaSampleDescription::initWithData(bytes, &parent, 1000);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->parent(), &parent);
    EXPECT_EQ(entry->offsetInFile(), 1000U);
    EXPECT_EQ(entry->atomSize(), bytes.size());
    EXPECT_EQ(entry->atomTypeString(), "mebx");
    EXPECT_EQ(entry->originalData(), bytes);
    EXPECT_EQ(entry->unknownData(), std::nullopt);
    ASSERT_EQ(entry->children().size(), 1U);
    const auto* keys = dynamic_cast<VexQTmebxkeysAtom*>(entry->children()[0].get());
    ASSERT_TRUE(keys);
    EXPECT_EQ(keys->parent(), entry.get());
    EXPECT_EQ(keys->offsetInFile(), 1016U);
    EXPECT_EQ(keys->keys().at(0).value(), "a.b");
    EXPECT_EQ(entry->atomData(), bytes);
    EXPECT_EQ(entry->atomTypeString(), "mebx");
}

TEST(MetaSampleDescription, DoesNotReadTheCommonFields) {
    const auto entry =
        read(atom("mebx"_os, {u8(3), u8(4), u8(5), u8(6), u16(0x0708), u16(0x090A), kKeys}));
    EXPECT_EQ(entry->dataFormat(), "????"_os);
    EXPECT_EQ(entry->dataReferenceIndex(), 0);
    EXPECT_EQ(entry->sampleDescriptionSize(), 0U);
    EXPECT_EQ(entry->version(), 3);
    EXPECT_EQ(entry->flags0(), 4);
    EXPECT_EQ(entry->flags1(), 5);
    EXPECT_EQ(entry->flags2(), 6);
    EXPECT_EQ(entry->atomData(), entryWith({kKeys}));
}

TEST(MetaSampleDescription, WritesADataReferenceOfOneWhateverWasRead) {
    const auto entry = read(atom("mebx"_os, {zeros(6), u16(2), kKeys}));
    entry->setDataReferenceIndex(3);
    EXPECT_EQ(entry->atomData(), entryWith({kKeys}));
}

TEST(MetaSampleDescription, HasTheFormatForItsTypeAndWritesTheUsualOne) {
    const auto entry = read(atom("abcd"_os, {zeros(6), u16(1), kKeys}));
    EXPECT_EQ(entry->atomTypeString(), "abcd");
    EXPECT_EQ(entry->atomData(), entryWith({kKeys}));
    EXPECT_EQ(entry->atomTypeString(), "abcd");
}

TEST(MetaSampleDescription, BeginsEmptyAndIsNotWritten) {
    VexQTmetaSampleDescription entry;
    EXPECT_EQ(entry.atomTypeString(), "meta");
    EXPECT_EQ(entry.originalData(), std::nullopt);
    EXPECT_EQ(entry.sourceName(), std::nullopt);
    EXPECT_EQ(entry.atomName(), "Metadata Sample Description");
    EXPECT_EQ(entry.atomNibName(), "VexQTmetaAtom");
    EXPECT_EQ(entry.atomData(), Bytes());
}

TEST(MetaSampleDescription, KeepsNothingButItsKeyTable) {
    const auto entry =
        read(entryWith({atom("btrt"_os, {u32(1)}), kKeys, atom("abcd"_os, {u32(2)})}));
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->children()[0]->offsetInFile(), 1028U);
    EXPECT_EQ(entry->atomData(), entryWith({kKeys}));
    EXPECT_EQ(entry->atomSize(), 16U + kKeys.size());
}

TEST(MetaSampleDescription, IsNotWrittenWithoutExactlyOneChild) {
    const Bytes none = entryWith({atom("btrt"_os, {u32(1)})});
    const auto entry = read(none);
    EXPECT_TRUE(entry->children().empty());
    EXPECT_EQ(entry->atomData(), Bytes());
    EXPECT_EQ(entry->originalData(), none);
    const auto two = read(entryWith({kKeys, kKeys}));
    EXPECT_EQ(two->children().size(), 2U);
    EXPECT_EQ(two->atomData(), Bytes());
}

TEST(MetaSampleDescription, EndsAtAChildOfAnotherTypeThatReachesPastTheEnd) {
    const auto entry = read(entryWith({kKeys, atomClaiming(13, "abcd"_os, {u32(7)})}));
    EXPECT_EQ(entry->children().size(), 1U);
    EXPECT_TRUE(
        read(entryWith({atomClaiming(0xFFFFFFFF, "abcd"_os, {kKeys})}))->children().empty());
    EXPECT_TRUE(
        read(entryWith({extendedAtomClaiming(~std::uint64_t{0}, "abcd"_os)}))->children().empty());
}

TEST(MetaSampleDescription, RaisesForAKeyTableThatReachesPastTheEnd) {
    EXPECT_THROW(read(entryWith({atomClaiming(13, "keys"_os, {u32(7)})})), RangeError);
}

TEST(MetaSampleDescription, CountsAChildOfSizeZeroFromTheEntrysStart) {
    EXPECT_THROW(read(entryWith({atomClaiming(0, "keys"_os, {u32(7)})})), RangeError);
    EXPECT_TRUE(read(entryWith({atomClaiming(0, "abcd"_os, {u32(7)})}))->children().empty());
}

TEST(MetaSampleDescription, DoesNotStandStillAtAnExtendedSizeOfZero) {
    EXPECT_THROW(read(entryWith({extendedAtomClaiming(0, "abcd"_os)})), RangeError);
    EXPECT_THROW(read(entryWith({extendedAtomClaiming(0, "keys"_os)})), RangeError);
}

TEST(MetaSampleDescription, ReadsExtendedSizes) {
    const auto entry = read(entryWith({extendedAtomClaiming(20, "abcd"_os, {u32(7)}), kKeys}));
    EXPECT_EQ(entry->children().size(), 1U);

    const auto extended = read(extendedAtomClaiming(24 + kKeys.size(), "mebx"_os,
                                                    {u8(3), u8(4), u8(5), u8(6), u32(0), kKeys}));
    EXPECT_EQ(extended->atomSize(), 24 + kKeys.size());
    EXPECT_EQ(extended->version(), 3);
    EXPECT_EQ(extended->flags2(), 6);
    ASSERT_EQ(extended->children().size(), 1U);
    EXPECT_EQ(extended->children()[0]->offsetInFile(), 1024U);
    EXPECT_EQ(extended->atomData(), entryWith({kKeys}));
}

TEST(MetaSampleDescription, LeavesItsHeaderOutOfASizeOfZero) {
    EXPECT_EQ(read(atomClaiming(0, "mebx"_os, {zeros(8), kKeys}))->atomSize(), 8 + kKeys.size());
    EXPECT_EQ(read(extendedAtomClaiming(0, "mebx"_os, {zeros(8), kKeys}))->atomSize(),
              8 + kKeys.size());
}

TEST(MetaSampleDescription, TakesItsSizeFromItsHeader) {
    EXPECT_EQ(read(atomClaiming(99, "mebx"_os, {zeros(8), kKeys}))->atomSize(), 99U);
}

TEST(MetaSampleDescription, HasNoChildrenInTwentyFourBytes) {
    EXPECT_TRUE(read(entryWith({atom("keys"_os)}))->children().empty());
    EXPECT_EQ(read(entryWith({atom("keys"_os, {u8(7)})}))->children().size(), 1U);
}

TEST(MetaSampleDescription, NeedsVersionAndFlagsAndNoMore) {
    const Bytes bytes = entryWith({});
    EXPECT_TRUE(read(ByteView(bytes).first(12)));
    EXPECT_THROW(read(ByteView(bytes).first(11)), RangeError);
    EXPECT_THROW(read(ByteView(bytes).first(7)), RangeError);
}

TEST(MetaSampleDescription, WritesNoneOfTheFieldsOfATimecode) {
    const auto entry = read(entryWith({kKeys}));
    entry->setFirstFlags(1);
    entry->setTcFlags(2);
    entry->setTimeScale(3);
    entry->setFrameDuration(4);
    entry->setNumFrames(5);
    entry->setLanguageCode(6);
    entry->setSourceName("Tape");
    entry->setOriginalData(text("other"));
    EXPECT_EQ(entry->originalData(), text("other"));
    EXPECT_EQ(entry->atomData(), entryWith({kKeys}));
    entry->setOriginalData(std::nullopt);
    EXPECT_EQ(entry->originalData(), std::nullopt);
}

TEST(MetaSampleDescription, ListsTheCommonPropertiesFirst) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTmetaSampleDescription().properties())
        names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{
                         "dataFormat", "dataReferenceIndex", "sampleDescriptionSize",
                         "originalData", "firstFlags", "tcFlags", "timeScale", "frameDuration",
                         "numFrames", "languageCode", "sourceName"}));
}

TEST(MetaSampleDescription, DescribesEveryEntryOfAMetadataTrack) {
    VexQTmdiaAtom media;
    media.setMediaType("meta"_os);
    const Bytes unwritten = entryWith({atom("btrt"_os, {u32(1)})});
    const Bytes bytes = atom("stsd"_os, {u32(0), u32(2), unwritten, entryWith({kKeys})});
    const auto table = VexQTstsdAtom::initWithData(bytes, &media, 100);
    ASSERT_EQ(table->children().size(), 2U);
    for (const auto& child : table->children())
        EXPECT_TRUE(dynamic_cast<VexQTmetaSampleDescription*>(child.get()));
    // The entry that encodes to nothing is counted all the same.
    EXPECT_EQ(table->atomData(), atom("stsd"_os, {u32(0), u32(2), entryWith({kKeys})}));
}

TEST(MetaSampleDescription, KeepsAllButTheKeyTableWhenAKeyIsEditedCarefully) {
    const auto withKeys = [](ByteView keys) {
        return atom("mebx"_os, {u8(3), u8(4), u8(5), u8(6), u16(0x0708), u16(2),
                                atom("btrt"_os, {u32(1)}), keys, atom("abcd"_os, {u32(2)})});
    };
    const auto entry = read(withKeys(kKeys));
    dynamic_cast<VexQTmebxkeysAtom&>(*entry->children()[0]).keys()[0].setValue("a.bcd");
    const SharedBytes written = Surgery().written(*entry).flat();
    EXPECT_TRUE(std::ranges::equal(
        written.view(),
        withKeys(
            atom("keys"_os, {atom(0x01020304, {atom("keyd"_os, {text("mdta"), text("a.bcd")}),
                                               atom("dtyp"_os, {u64(0x05060708090A0B0C)})})}))));
}

}  // namespace
}  // namespace vexqt

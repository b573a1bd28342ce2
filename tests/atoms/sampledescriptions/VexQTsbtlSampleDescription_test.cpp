#include "vexqt/atoms/sampledescriptions/VexQTsbtlSampleDescription.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTtx3gAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kTimedText = atom("tx3g"_os, {zeros(6), u16(3), u32(0x20000000), zeros(26),
                                          atom("ftab"_os, {u16(1), u16(7), u8(5), text("Serif")})});

std::unique_ptr<VexQTsbtlSampleDescription> read(ByteView bytes) {
    return VexQTsbtlSampleDescription::initWithData(bytes, nullptr, 1000);
}

TEST(SbtlSampleDescription, WrapsTheEntryAsItsFirstChild) {
    VexQTAtom parent;
    const auto entry = VexQTsbtlSampleDescription::initWithData(kTimedText, &parent, 1000);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->parent(), &parent);
    EXPECT_EQ(entry->offsetInFile(), 1000U);
    EXPECT_EQ(entry->atomSize(), 64U);
    EXPECT_EQ(entry->atomTypeString(), "sbtl");
    EXPECT_EQ(entry->sampleDescriptionSize(), 64U);
    EXPECT_EQ(entry->dataFormat(), "tx3g"_os);
    EXPECT_EQ(entry->dataReferenceIndex(), 0);
    EXPECT_EQ(entry->reserved1(), zeros(6));
    ASSERT_EQ(entry->children().size(), 1U);
    const auto* timedText = dynamic_cast<VexQTtx3gAtom*>(entry->children().front().get());
    ASSERT_TRUE(timedText);
    EXPECT_EQ(timedText->parent(), entry.get());
    EXPECT_EQ(timedText->offsetInFile(), 1000U);
    EXPECT_EQ(timedText->dataReferenceIndex(), 3);
}

TEST(SbtlSampleDescription, WritesItsChildrenAndNothingElse) {
    const auto entry = read(kTimedText);
    entry->setDataReferenceIndex(9);
    entry->setReserved1(text("abcdef"));
    EXPECT_EQ(entry->atomData(), kTimedText);
    entry->addChild(VexQTAtom::initWithData(atom("abcd"_os, {u32(7)}), nullptr, 0));
    EXPECT_EQ(entry->atomData(), join({kTimedText, atom("abcd"_os, {u32(7)})}));
    EXPECT_EQ(entry->atomSize(), 76U);
    entry->children().clear();
    EXPECT_EQ(entry->atomData(), Bytes());
}

TEST(SbtlSampleDescription, BeginsEmpty) {
    VexQTsbtlSampleDescription entry;
    EXPECT_EQ(entry.atomTypeString(), "sbtl");
    EXPECT_EQ(entry.reserved1(), zeros(6));
    EXPECT_EQ(entry.atomName(), "Subtitle Sample Description");
    EXPECT_EQ(entry.atomNibName(), std::nullopt);
    EXPECT_EQ(entry.atomData(), Bytes());
}

TEST(SbtlSampleDescription, KeepsOtherFormatsGeneric) {
    const Bytes bytes = atom("stpp"_os, {zeros(6), u16(3), text("more")});
    const auto entry = read(bytes);
    EXPECT_EQ(entry->dataFormat(), "stpp"_os);
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->children()[0]->atomClass().className, "VexQTAtom");
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SbtlSampleDescription, ReadsWhatFollowsItsEntry) {
    const Bytes bytes = join({kTimedText, atom("abcd"_os, {u32(7)})});
    const auto entry = read(bytes);
    ASSERT_EQ(entry->children().size(), 2U);
    EXPECT_EQ(entry->children()[1]->offsetInFile(), 1064U);
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SbtlSampleDescription, HasNoChildrenInEightBytes) {
    const auto entry = read(atom("tx3g"_os));
    EXPECT_EQ(entry->dataFormat(), "tx3g"_os);
    EXPECT_TRUE(entry->children().empty());
    EXPECT_EQ(entry->atomData(), Bytes());
}

TEST(SbtlSampleDescription, RaisesForFewerThanEightBytes) {
    EXPECT_THROW(read(ByteView(kTimedText).first(7)), RangeError);
    EXPECT_THROW(read({}), RangeError);
}

TEST(SbtlSampleDescription, DropsABareLastHeader) {
    EXPECT_EQ(read(join({kTimedText, atom("abcd"_os)}))->atomData(), kTimedText);
}

TEST(SbtlSampleDescription, LeavesEightBytesOutOfAChildOfSizeZero) {
    // Eight of the twelve bytes are left for a second child, and a bare header is none.
    const auto entry = read(join({u32(0), text("abcd"), u32(7), atom("efgh"_os)}));
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->children()[0]->unknownData(), u32(7));
}

TEST(SbtlSampleDescription, ReadsAnExtendedSize) {
    const Bytes bytes = extendedAtomClaiming(20, "abcd"_os, {u32(7)});
    const auto entry = read(bytes);
    EXPECT_EQ(entry->sampleDescriptionSize(), 1U);
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->children()[0]->unknownData(), u32(7));
}

TEST(SbtlSampleDescription, DoesNotStandStillAtAnExtendedSizeOfZero) {
    EXPECT_THROW(read(extendedAtomClaiming(0, "abcd"_os, {u32(7)})), RangeError);
}

TEST(SbtlSampleDescription, RaisesForAChildThatReachesPastTheEnd) {
    EXPECT_THROW(read(atomClaiming(13, "abcd"_os, {u32(7)})), RangeError);
}

TEST(SbtlSampleDescription, RaisesForATimedTextThatIsTooShort) {
    EXPECT_THROW(read(atom("tx3g"_os, {zeros(55)})), InsertionError);
}

TEST(SbtlSampleDescription, ListsTheCommonPropertiesFirst) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTsbtlSampleDescription().properties())
        names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"dataFormat", "dataReferenceIndex",
                                                    "sampleDescriptionSize", "reserved1"}));
}

TEST(SbtlSampleDescription, DescribesEveryEntryOfASubtitleTrack) {
    VexQTmdiaAtom media;
    media.setMediaType("sbtl"_os);
    const Bytes bytes = atom("stsd"_os, {u32(0), u32(1), kTimedText});
    const auto table = VexQTstsdAtom::initWithData(bytes, &media, 100);
    EXPECT_EQ(table->valueForKeyPath("sbtl.tx3g.displayFlags"), Value(0x20000000));
    EXPECT_EQ(table->children()[0]->children()[0]->offsetInFile(), 116U);
    EXPECT_EQ(table->children()[0]->description(),
              "     'sbtl' (64)\r\n       'tx3g' (64)\r\n         'ftab' (18)");
    EXPECT_EQ(table->atomData(), bytes);
}

TEST(SbtlSampleDescription, KeepsATimedTextThatIsTooShortInATolerantReading) {
    const Bytes bytes = atom("tx3g"_os, {zeros(55)});
    std::vector<Problem> problems;
    ReadContext context(problems);
    const auto entry = VexQTAtom::make(VexQTsbtlSampleDescription::kClass,
                                       SharedBytes::copyOf(bytes), nullptr, 1000, context);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].offsetInFile, 1000U);
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->children()[0]->declinedClass(), "VexQTtx3gAtom");
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(SbtlSampleDescription, GrowsWithAFontNameThatIsEditedCarefully) {
    const auto entry = read(kTimedText);
    const Value fonts = entry->valueForKeyPath("tx3g.ftab");
    auto& table = dynamic_cast<VexQTftabAtom&>(*std::get<VexQTAtom*>(fonts));
    table.fontTableEntries()[0].setFontName("Sans-Serif");
    const SharedBytes written = Surgery().written(*entry).flat();
    EXPECT_TRUE(std::ranges::equal(
        written.view(),
        atom("tx3g"_os, {zeros(6), u16(3), u32(0x20000000), zeros(26),
                         atom("ftab"_os, {u16(1), u16(7), u8(10), text("Sans-Serif")})})));
}

}  // namespace
}  // namespace vexqt

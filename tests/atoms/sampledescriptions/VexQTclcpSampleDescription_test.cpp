#include "vexqt/atoms/sampledescriptions/VexQTclcpSampleDescription.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/sampledescriptions/VexQTstsdAtom.h"
#include "vexqt/atoms/structure/VexQTmdiaAtom.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes entryClaiming(std::uint32_t size, std::initializer_list<ByteView> children) {
    return join({
        u32(size),
        text("c608"),    //
        text("abcdef"),  // reserved
        u16(0x0102),     // data reference index
        join(children),
    });
}
Bytes entryWith(std::initializer_list<ByteView> children) {
    return entryClaiming(static_cast<std::uint32_t>(16 + join(children).size()), children);
}

std::unique_ptr<VexQTclcpSampleDescription> read(ByteView bytes) {
    return VexQTclcpSampleDescription::initWithData(bytes, nullptr, 1000);
}

const Bytes kProtection = atom("sinf"_os, {atom("abcd"_os, {u32(7)})});
const Bytes kOther = atom("efgh"_os, {u32(9)});

TEST(ClcpSampleDescription, ReadsTheCommonFieldsWithTheReservedBytes) {
    VexQTAtom parent;
    const auto entry =
        VexQTclcpSampleDescription::initWithData(entryClaiming(99, {}), &parent, 1000);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->parent(), &parent);
    EXPECT_EQ(entry->offsetInFile(), 1000U);
    EXPECT_EQ(entry->atomSize(), 16U);
    EXPECT_EQ(entry->atomTypeString(), "clcp");
    EXPECT_EQ(entry->sampleDescriptionSize(), 99U);
    EXPECT_EQ(entry->dataFormat(), "c608"_os);
    EXPECT_EQ(entry->reserved1(), text("abcdef"));
    EXPECT_EQ(entry->dataReferenceIndex(), 0x0102);
    EXPECT_TRUE(entry->children().empty());
    EXPECT_EQ(entry->atomData(), entryWith({}));
}

TEST(ClcpSampleDescription, WritesEveryField) {
    VexQTclcpSampleDescription entry;
    EXPECT_EQ(entry.reserved1(), zeros(6));
    entry.setDataFormat("c608"_os);
    entry.setReserved1(text("abcdef"));
    entry.setDataReferenceIndex(0x0102);
    entry.addChild(VexQTAtom::initWithData(kOther, nullptr, 0));
    EXPECT_EQ(entry.atomData(), entryWith({kOther}));
    EXPECT_EQ(entry.atomSize(), 28U);
    EXPECT_EQ(entry.atomName(), "Closed-Captioning Sample Description");
    EXPECT_EQ(entry.atomNibName(), "VexQTclcpAtom");
}

TEST(ClcpSampleDescription, WritesSixReservedBytesHoweverManyThereAre) {
    const auto entry = read(entryWith({}));
    entry->setReserved1(text("abcdefgh"));
    EXPECT_EQ(entry->atomData(), entryWith({}));
    entry->setReserved1(text("ab"));
    EXPECT_EQ(entry->atomData(), join({u32(16), text("c608"), text("ab"), zeros(4), u16(0x0102)}));
}

TEST(ClcpSampleDescription, ReadsItsChildren) {
    const Bytes bytes = entryWith({kProtection, kOther});
    const auto entry = read(bytes);
    ASSERT_EQ(entry->children().size(), 2U);
    const auto* protection = dynamic_cast<VexQTsinfAtom*>(entry->children()[0].get());
    ASSERT_TRUE(protection);
    EXPECT_EQ(protection->parent(), entry.get());
    EXPECT_EQ(protection->offsetInFile(), 1016U);
    EXPECT_EQ(entry->children()[1]->atomClass().className, "VexQTAtom");
    EXPECT_EQ(entry->children()[1]->offsetInFile(), 1016U + kProtection.size());
    EXPECT_EQ(entry->atomData(), bytes);
}

TEST(ClcpSampleDescription, LeavesOutAChildThatClaimsMoreThanThereIs) {
    const auto entry = read(entryWith({kOther, atomClaiming(13, "abcd"_os, {u32(7)})}));
    ASSERT_EQ(entry->children().size(), 1U);
    EXPECT_EQ(entry->atomData(), entryWith({kOther}));
    const auto largest = read(entryWith({atomClaiming(0xFFFFFFFF, "sinf"_os, {u32(7)})}));
    EXPECT_TRUE(largest->children().empty());
}

TEST(ClcpSampleDescription, RaisesForAnExtendedSizeThatClaimsMoreThanThereIs) {
    EXPECT_THROW(read(entryWith({extendedAtomClaiming(21, "abcd"_os, {u32(7)})})), RangeError);
    EXPECT_THROW(read(entryWith({u32(1), text("abcd"), u32(0)})), RangeError);
}

TEST(ClcpSampleDescription, ReadsAnExtendedSize) {
    const auto entry = read(entryWith({extendedAtomClaiming(20, "abcd"_os, {u32(7)}), kOther}));
    ASSERT_EQ(entry->children().size(), 2U);
    EXPECT_EQ(entry->children()[0]->unknownData(), u32(7));
}

TEST(ClcpSampleDescription, CountsAChildOfSizeZeroFromTheEntrysStart) {
    EXPECT_THROW(read(entryWith({atomClaiming(0, "abcd"_os, {u32(7)})})), RangeError);
}

TEST(ClcpSampleDescription, DoesNotStandStillAtAnExtendedSizeOfZero) {
    EXPECT_THROW(read(entryWith({extendedAtomClaiming(0, "abcd"_os, {u32(7)})})), RangeError);
}

TEST(ClcpSampleDescription, DropsABareLastHeader) {
    EXPECT_TRUE(read(entryWith({atom("abcd"_os)}))->children().empty());
    EXPECT_EQ(read(entryWith({atom("abcd"_os, {u8(7)})}))->children().size(), 1U);
}

TEST(ClcpSampleDescription, RaisesForFewerThanSixteenBytes) {
    EXPECT_THROW(read(ByteView(entryWith({})).first(15)), RangeError);
}

TEST(ClcpSampleDescription, ListsTheCommonPropertiesFirst) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTclcpSampleDescription().properties())
        names.push_back(property->name);
    EXPECT_EQ(names, (std::vector<std::string_view>{"dataFormat", "dataReferenceIndex",
                                                    "sampleDescriptionSize", "reserved1"}));
}

TEST(ClcpSampleDescription, DescribesEveryEntryOfACaptionTrack) {
    VexQTmdiaAtom media;
    media.setMediaType("clcp"_os);
    const Bytes bytes = atom("stsd"_os, {u32(0), u32(1), entryWith({kProtection})});
    const auto table = VexQTstsdAtom::initWithData(bytes, &media, 100);
    EXPECT_EQ(table->valueForKeyPath("clcp.reserved1"), Value(text("abcdef")));
    EXPECT_EQ(table->children()[0]->children()[0]->offsetInFile(), 132U);
    EXPECT_EQ(table->atomData(), bytes);
}

TEST(ClcpSampleDescription, KeepsAChildThatItLeavesOutWhenItIsEditedCarefully) {
    const auto entry = read(entryWith({kOther, atomClaiming(13, "abcd"_os, {u32(7)})}));
    entry->setDataReferenceIndex(5);
    const SharedBytes written = Surgery().written(*entry).flat();
    Bytes expected = entryWith({kOther, atomClaiming(13, "abcd"_os, {u32(7)})});
    expected[14] = 0;
    expected[15] = 5;
    EXPECT_TRUE(std::ranges::equal(written.view(), expected));
}

}  // namespace
}  // namespace vexqt

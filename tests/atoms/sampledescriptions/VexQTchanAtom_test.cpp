#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kDescription = join({
    u32(38),          // Label.
    u32(3),           // Flags.
    u32(0x3F800000),  // X: 1.
    u32(0xC0200000),  // Y: -2.5.
    u32(0x7FA12345),  // Z: a signalling NaN.
});
const Bytes kOther = join({u32(39), u32(4), u32(0x80000000), u32(0xFFC00001), u32(1)});

Bytes layout(std::uint32_t count, std::initializer_list<ByteView> descriptions = {}) {
    return atom("chan"_os, {
                               u8(5),
                               Bytes{1, 2, 3},   // Version, flags.
                               u32(0x00650002),  // Layout tag.
                               u32(0x80000007),  // Bitmap.
                               u32(count),
                               join(descriptions),
                           });
}

VexQTChannelDescription& descriptionAt(const VexQTAtom& layout, std::size_t index) {
    return dynamic_cast<VexQTChannelDescription&>(*layout.children().at(index));
}

TEST(ChanAtom, EveryFieldIsReadAndWritten) {
    const auto atom = VexQTchanAtom::initWithData(layout(0), nullptr, 30);
    EXPECT_EQ(atom->version(), 5);
    EXPECT_EQ(atom->flags0(), 1);
    EXPECT_EQ(atom->flags1(), 2);
    EXPECT_EQ(atom->flags2(), 3);
    EXPECT_EQ(atom->channelLayoutTag(), 0x00650002U);
    EXPECT_EQ(atom->channelBitmap(), 0x80000007U);
    EXPECT_FALSE(atom->appendEmptyChannelDescription());
    EXPECT_EQ(atom->atomSize(), 24U);
    EXPECT_EQ(atom->offsetInFile(), 30U);
    EXPECT_EQ(atom->atomData(), layout(0));
}

TEST(ChanAtom, DescriptionsAreChildrenThatDoNotKnowTheirParent) {
    const Bytes bytes = layout(2, {kDescription, kOther});
    const auto atom = VexQTchanAtom::initWithData(bytes, nullptr, 1000);
    ASSERT_EQ(atom->children().size(), 2U);
    EXPECT_EQ(descriptionAt(*atom, 0).channelLabel(), 38U);
    EXPECT_EQ(descriptionAt(*atom, 0).offsetInFile(), 1024U);
    EXPECT_EQ(descriptionAt(*atom, 0).parent(), nullptr);
    EXPECT_EQ(descriptionAt(*atom, 1).channelLabel(), 39U);
    EXPECT_EQ(descriptionAt(*atom, 1).offsetInFile(), 1044U);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(ChanAtom, TheCountOfDescriptionsIsNoBound) {
    for (const std::uint32_t count : {1U, 2U, 7U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(count);
        const auto atom =
            VexQTchanAtom::initWithData(layout(count, {kDescription, kOther}), nullptr, 0);
        EXPECT_EQ(atom->children().size(), 2U);
        EXPECT_FALSE(atom->appendEmptyChannelDescription());
        EXPECT_EQ(atom->atomData(), layout(2, {kDescription, kOther}));
    }
}

TEST(ChanAtom, PartOfADescriptionIsDropped) {
    for (const std::size_t length : {1U, 19U}) {
        SCOPED_TRACE(length);
        const auto alone =
            VexQTchanAtom::initWithData(layout(1, {ByteView(kOther).first(length)}), nullptr, 0);
        EXPECT_TRUE(alone->children().empty());
        EXPECT_FALSE(alone->appendEmptyChannelDescription());
        EXPECT_EQ(alone->atomData(), layout(0));

        const auto behind = VexQTchanAtom::initWithData(
            layout(2, {kDescription, ByteView(kOther).first(length)}), nullptr, 0);
        EXPECT_EQ(behind->atomData(), layout(1, {kDescription}));
    }
}

TEST(ChanAtom, BytesBehindACountOf0AreAnEmptyDescriptionWhateverTheyHold) {
    const struct {
        const char* what;
        Bytes more;
    } cases[] = {
        {"zeros", zeros(20)},
        {"one byte", u8(1)},
        {"a description", kDescription},
        {"more than a description", zeros(45)},
    };
    for (const auto& [what, more] : cases) {
        SCOPED_TRACE(what);
        const auto atom = VexQTchanAtom::initWithData(layout(0, {more}), nullptr, 0);
        EXPECT_TRUE(atom->appendEmptyChannelDescription());
        EXPECT_TRUE(atom->children().empty());
        EXPECT_EQ(atom->atomData(), layout(0, {zeros(20)}));
        EXPECT_EQ(atom->atomSize(), 44U);
    }
}

TEST(ChanAtom, AnEmptyDescriptionIsNotWrittenBesideOthers) {
    const auto atom = VexQTchanAtom::initWithData(layout(1, {kDescription}), nullptr, 0);
    atom->setAppendEmptyChannelDescription(true);
    EXPECT_EQ(atom->atomData(), layout(1, {kDescription}));
}

TEST(ChanAtom, FewerThan24BytesAreRefused) {
    Bytes bytes = layout(0);
    bytes.pop_back();
    EXPECT_EQ(VexQTchanAtom::initWithData(bytes, nullptr, 0), nullptr);
}

TEST(ChanAtom, OneMadeInMemoryHasNoSizeYet) {
    VexQTchanAtom atom;
    EXPECT_EQ(atom.atomSize(), 0U);
    EXPECT_EQ(atom.version(), 0);
    EXPECT_FALSE(atom.appendEmptyChannelDescription());
    EXPECT_EQ(atom.atomData(), testing::atom("chan"_os, {zeros(16)}));
    EXPECT_EQ(atom.atomSize(), 24U);
}

TEST(ChanAtom, EditsAreWritten) {
    VexQTchanAtom atom;
    atom.setVersion(5);
    atom.setFlags0(1);
    atom.setFlags1(2);
    atom.setFlags2(3);
    atom.setChannelLayoutTag(0x00650002);
    atom.setValueForKey(0x80000007, "channelBitmap");
    EXPECT_EQ(atom.atomData(), layout(0));
    auto description = std::make_unique<VexQTChannelDescription>();
    description->setChannelLabel(38);
    atom.addChild(std::move(description));
    EXPECT_EQ(atom.atomData(), layout(1, {u32(38), zeros(16)}));
}

TEST(ChanAtom, HasItsNames) {
    const VexQTchanAtom atom;
    EXPECT_EQ(atom.atomName(), "Channel Layout");
    EXPECT_EQ(atom.atomNibName(), "VexQTchanAtom");
    EXPECT_EQ(atom.atomType(), "chan"_os);
}

// MARK: Channel descriptions

TEST(ChannelDescription, EveryFieldIsReadAndWrittenWithoutAHeader) {
    const auto description = VexQTChannelDescription::initWithData(kDescription, nullptr, 24);
    EXPECT_EQ(description->channelLabel(), 38U);
    EXPECT_EQ(description->channelFlags(), 3U);
    EXPECT_EQ(description->channelCoordinateX(), 1.0F);
    EXPECT_EQ(description->channelCoordinateY(), -2.5F);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(description->channelCoordinateZ()), 0x7FA12345U);
    EXPECT_EQ(description->atomType(), "????"_os);
    EXPECT_EQ(description->version(), 0);
    EXPECT_EQ(description->atomSize(), 20U);
    EXPECT_EQ(description->offsetInFile(), 24U);
    EXPECT_EQ(description->atomData(), kDescription);
}

TEST(ChannelDescription, CoordinatesThatAreNoNumbersKeepTheirBits) {
    for (const std::uint32_t bits : {0x7F800001U, 0xFF800001U, 0x7FC00000U, 0x7FFFFFFFU,
                                     0x7F800000U, 0x80000000U, 0x00000001U}) {
        SCOPED_TRACE(bits);
        const Bytes bytes = join({zeros(8), u32(bits), u32(bits ^ 1), u32(bits ^ 2)});
        EXPECT_EQ(VexQTChannelDescription::initWithData(bytes, nullptr, 0)->atomData(), bytes);
    }
}

TEST(ChannelDescription, AnyLengthBut20IsRefused) {
    Bytes bytes = kDescription;
    bytes.push_back(0);
    EXPECT_EQ(VexQTChannelDescription::initWithData(bytes, nullptr, 0), nullptr);
    bytes.resize(19);
    EXPECT_EQ(VexQTChannelDescription::initWithData(bytes, nullptr, 0), nullptr);
}

TEST(ChannelDescription, EditsOfOneMadeInMemoryAreWritten) {
    VexQTChannelDescription description;
    EXPECT_EQ(description.version(), 0);
    EXPECT_EQ(description.atomData(), zeros(20));
    description.setChannelLabel(38);
    description.setChannelFlags(3);
    description.setChannelCoordinateX(1);
    description.setValueForKey(-2.5, "channelCoordinateY");
    description.setChannelCoordinateZ(std::bit_cast<float>(0x7FA12345U));
    EXPECT_EQ(description.atomData(), kDescription);
}

TEST(ChannelDescription, HasItsNames) {
    const VexQTChannelDescription description;
    EXPECT_EQ(description.atomName(), "Channel Layout Entry");
    EXPECT_EQ(description.atomNibName(), "VexQTChannelDescription");
}

}  // namespace
}  // namespace vexqt

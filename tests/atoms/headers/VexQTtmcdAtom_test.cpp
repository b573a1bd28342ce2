#include "vexqt/atoms/headers/VexQTtmcdAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/headers/VexQTtcmiAtom.h"
#include "vexqt/atoms/structure/VexQTgmhdAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kInformation = atom("tcmi"_os, {zeros(24), u8(2), text("Ab")});

TEST(TmcdAtom, ReadsItsInformationAndKeepsOtherChildrenGeneric) {
    VexQTAtom parent;
    const Bytes bytes = atom("tmcd"_os, {kInformation, atom("abcd"_os, {u32(0x01020304)})});
    const auto timecode = VexQTtmcdAtom::initWithData(bytes, &parent, 1000);
    EXPECT_EQ(timecode->parent(), &parent);
    EXPECT_EQ(timecode->offsetInFile(), 1000U);
    EXPECT_EQ(timecode->atomSize(), bytes.size());
    ASSERT_EQ(timecode->children().size(), 2U);
    const auto* information = dynamic_cast<VexQTtcmiAtom*>(timecode->children()[0].get());
    ASSERT_TRUE(information);
    EXPECT_EQ(information->fontName(), "Ab");
    EXPECT_EQ(information->parent(), timecode.get());
    EXPECT_EQ(information->offsetInFile(), 1008U);
    const VexQTAtom& other = *timecode->children()[1];
    EXPECT_EQ(other.atomClass().className, "VexQTAtom");
    EXPECT_EQ(other.offsetInFile(), 1008U + kInformation.size());
    EXPECT_EQ(other.unknownData(), u32(0x01020304));
    EXPECT_EQ(timecode->atomData(), bytes);
}

TEST(TmcdAtom, HasNoChildrenInSixteenBytes) {
    const Bytes bytes = atom("tmcd"_os, {u32(8), text("abcd")});
    const auto timecode = VexQTtmcdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_TRUE(timecode->children().empty());
    EXPECT_EQ(timecode->atomSize(), 16U);
    EXPECT_EQ(timecode->atomData(), join({u32(8), text("tmcd")}));
    EXPECT_EQ(timecode->atomSize(), 8U);
}

TEST(TmcdAtom, TakesItsSizeAndTypeFromItsHeader) {
    const auto timecode =
        VexQTtmcdAtom::initWithData(atomClaiming(99, "abcd"_os, {kInformation}), nullptr, 0);
    EXPECT_EQ(timecode->atomSize(), 99U);
    EXPECT_EQ(timecode->atomTypeString(), "abcd");
    ASSERT_EQ(timecode->children().size(), 1U);
    EXPECT_EQ(timecode->atomData(), atom("tmcd"_os, {kInformation}));
    EXPECT_EQ(timecode->atomTypeString(), "tmcd");
}

TEST(TmcdAtom, LeavesItsHeaderOutOfASizeOfZero) {
    const auto shortHeader =
        VexQTtmcdAtom::initWithData(atomClaiming(0, "tmcd"_os, {kInformation}), nullptr, 0);
    EXPECT_EQ(shortHeader->atomSize(), kInformation.size());
    EXPECT_EQ(shortHeader->children().size(), 1U);
    const auto extended =
        VexQTtmcdAtom::initWithData(extendedAtomClaiming(0, "tmcd"_os, {kInformation}), nullptr, 0);
    EXPECT_EQ(extended->atomSize(), kInformation.size());
    EXPECT_EQ(extended->children().size(), 1U);
}

TEST(TmcdAtom, ReadsAnExtendedHeaderAndWritesAShortOne) {
    const Bytes bytes = extendedAtomClaiming(16 + kInformation.size(), "tmcd"_os, {kInformation});
    const auto timecode = VexQTtmcdAtom::initWithData(bytes, nullptr, 1000);
    EXPECT_EQ(timecode->atomSize(), bytes.size());
    ASSERT_EQ(timecode->children().size(), 1U);
    EXPECT_EQ(timecode->children()[0]->offsetInFile(), 1016U);
    EXPECT_EQ(timecode->atomData(), atom("tmcd"_os, {kInformation}));
}

TEST(TmcdAtom, ReadsAChildWithAnExtendedSize) {
    const Bytes child = extendedAtomClaiming(20, "abcd"_os, {u32(0x01020304)});
    const auto timecode =
        VexQTtmcdAtom::initWithData(atom("tmcd"_os, {child, kInformation}), nullptr, 0);
    ASSERT_EQ(timecode->children().size(), 2U);
    EXPECT_EQ(timecode->children()[0]->unknownData(), u32(0x01020304));
}

TEST(TmcdAtom, CountsAChildOfSizeZeroFromItsOwnStart) {
    // The first child's 12 bytes are all that the container has behind its header.
    const Bytes bytes = atom("tmcd"_os, {u32(0), text("abcd"), u32(7)});
    const auto timecode = VexQTtmcdAtom::initWithData(bytes, nullptr, 0);
    ASSERT_EQ(timecode->children().size(), 1U);
    EXPECT_EQ(timecode->children()[0]->unknownData(), u32(7));

    const Bytes second = atom("tmcd"_os, {atom("efgh"_os, {u32(1)}), u32(0), text("abcd"), u32(7)});
    EXPECT_THROW(VexQTtmcdAtom::initWithData(second, nullptr, 0), RangeError);
}

TEST(TmcdAtom, DoesNotStandStillAtAnExtendedSizeOfZero) {
    const Bytes bytes = atom("tmcd"_os, {extendedAtomClaiming(0, "abcd"_os)});
    EXPECT_THROW(VexQTtmcdAtom::initWithData(bytes, nullptr, 0), RangeError);
}

TEST(TmcdAtom, RaisesForAChildThatReachesPastTheEnd) {
    const Bytes bytes = atom("tmcd"_os, {atomClaiming(13, "abcd"_os, {u32(7)})});
    EXPECT_THROW(VexQTtmcdAtom::initWithData(bytes, nullptr, 0), RangeError);
}

TEST(TmcdAtom, RaisesForAnInformationThatIsTooShort) {
    const Bytes bytes = atom("tmcd"_os, {atom("tcmi"_os, {zeros(24)})});
    EXPECT_THROW(VexQTtmcdAtom::initWithData(bytes, nullptr, 0), InsertionError);
}

TEST(TmcdAtom, TakesAnyLengthThatHoldsAHeader) {
    EXPECT_TRUE(VexQTtmcdAtom::initWithData(atom("tmcd"_os), nullptr, 0));
    EXPECT_THROW(VexQTtmcdAtom::initWithData(u32(8), nullptr, 0), RangeError);
}

TEST(TmcdAtom, HasNoView) {
    VexQTtmcdAtom timecode;
    EXPECT_EQ(timecode.atomName(), "Timecode");
    EXPECT_EQ(timecode.atomNibName(), std::nullopt);
    EXPECT_TRUE(timecode.properties().empty());
}

TEST(TmcdAtom, IsReadAsAChildOfTheBaseHeader) {
    const Bytes bytes = atom("gmhd"_os, {atom("tmcd"_os, {kInformation})});
    const auto header = VexQTgmhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(header->valueForKeyPath("tmcd.tcmi.fontName"), Value("Ab"));
    EXPECT_EQ(header->atomData(), bytes);
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/metadata/VexQTilstAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/metadata/VexQTMetadataItem.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes number(std::uint8_t value) { return atom("data"_os, {u32(21), u32(0), u8(value)}); }

std::unique_ptr<VexQTilstAtom> read(ByteView bytes) {
    return VexQTilstAtom::initWithData(bytes, nullptr, 4096);
}
std::unique_ptr<VexQTMetadataItem> readItem(ByteView bytes) {
    return VexQTMetadataItem::initWithData(bytes, nullptr, 4096);
}

TEST(IlstAtom, IsNamedAndHasNoView) {
    const VexQTilstAtom items;
    EXPECT_EQ(items.atomDescription(), "Metadata Item List ('ilst')");
    EXPECT_EQ(items.atomNibName(), std::nullopt);
    EXPECT_EQ(VexQTilstAtom().atomData(), atom("ilst"_os));
}

TEST(IlstAtom, EveryChildIsAnItemWhateverItsCode) {
    const Bytes bytes = atom("ilst"_os, {atom("trkn"_os, {number(1)}), atom(3, {number(2)}),
                                         atom("data"_os, {number(3)}), atom("free"_os, {number(4)}),
                                         atom("????"_os, {number(5)})});
    const auto items = read(bytes);
    ASSERT_EQ(items->children().size(), 5U);
    for (const auto& child : items->children()) {
        SCOPED_TRACE(child->atomTypeString());
        EXPECT_NE(dynamic_cast<const VexQTMetadataItem*>(child.get()), nullptr);
        ASSERT_EQ(child->children().size(), 1U);
        EXPECT_NE(dynamic_cast<const VexQTdataAtom*>(child->children()[0].get()), nullptr);
        EXPECT_EQ(child->parent(), items.get());
    }
    EXPECT_EQ(items->children()[1]->offsetInFile(), 4096U + 8U + 25U);
    EXPECT_EQ(items->children()[1]->atomType(), 3U);
    EXPECT_EQ(items->atomData(), bytes);
}

TEST(IlstAtom, AnEmptyItemAtItsEndIsKept) {
    const Bytes bytes = atom("ilst"_os, {atom(1, {number(1)}), atom(2)});
    const auto items = read(bytes);
    ASSERT_EQ(items->children().size(), 2U);
    EXPECT_TRUE(items->children()[1]->children().empty());
    EXPECT_EQ(items->atomData(), bytes);
    EXPECT_EQ(read(atom("ilst"_os, {atom(2)}))->children().size(), 1U);
}

TEST(IlstAtom, SevenBytesAtItsEndAreDropped) {
    const auto items = read(atom("ilst"_os, {atom(1, {number(1)}), zeros(7)}));
    EXPECT_EQ(items->atomData(), atom("ilst"_os, {atom(1, {number(1)})}));
}

TEST(IlstAtom, ASizeOfZeroLeavesOutTheHeader) {
    const auto items = read(atomClaiming(0, "ilst"_os, {atom(1, {number(1)})}));
    EXPECT_EQ(items->atomSize(), 25U);
    EXPECT_EQ(items->children().size(), 1U);
    EXPECT_EQ(items->atomData(), atom("ilst"_os, {atom(1, {number(1)})}));
    EXPECT_EQ(items->atomSize(), 33U);
}

TEST(IlstAtom, AnExtendedSizeIsHeldOneHigher) {
    struct Extended {
        std::uint64_t stored, held;
    };
    const Extended cases[] = {{41, 42}, {0, 1}, {std::numeric_limits<std::uint64_t>::max(), 0}};
    for (const Extended& tested : cases) {
        SCOPED_TRACE(tested.stored);
        const auto items =
            read(extendedAtomClaiming(tested.stored, "ilst"_os, {atom(1, {number(1)})}));
        EXPECT_EQ(items->atomSize(), tested.held);
        ASSERT_EQ(items->children().size(), 1U);
        EXPECT_EQ(items->children()[0]->offsetInFile(), 4096U + 16U);
        EXPECT_EQ(items->atomData(), atom("ilst"_os, {atom(1, {number(1)})}));
        EXPECT_EQ(items->atomSize(), 33U);
    }
}

TEST(IlstAtom, AnItemOfSizeZeroReachesAsFarAsTheListIsLong) {
    const auto items = read(atom("ilst"_os, {atomClaiming(0, 1, {number(9)})}));
    ASSERT_EQ(items->children().size(), 1U);
    EXPECT_EQ(items->children()[0]->atomSize(), 17U);
    EXPECT_EQ(items->children()[0]->children().size(), 1U);
    EXPECT_THROW(read(atom("ilst"_os, {atom(1), atomClaiming(0, 2, {number(9)})})), RangeError);
}

TEST(IlstAtom, WritingRestoresTheCode) {
    const auto items = read(atom("xxxx"_os, {atom(1, {number(1)})}));
    EXPECT_EQ(items->atomTypeString(), "xxxx");
    EXPECT_EQ(items->atomData(), atom("ilst"_os, {atom(1, {number(1)})}));
    EXPECT_EQ(items->atomTypeString(), "ilst");
}

TEST(IlstAtom, AnItemPastTheEndIsARangeError) {
    EXPECT_THROW(read(atom("ilst"_os, {atomClaiming(99, 1, {number(1)})})), RangeError);
}

TEST(MetadataItem, IsNamedAndHasNoView) {
    const VexQTMetadataItem item;
    EXPECT_EQ(item.atomName(), "Metadata Item");
    EXPECT_EQ(item.atomNibName(), std::nullopt);
    EXPECT_EQ(item.atomTypeString(), "????");
}

TEST(MetadataItem, ACodeThatIsAKeysNumberShowsAsThatNumber) {
    struct Code {
        OSType code;
        std::string shown;
    };
    const Code cases[] = {
        {3, "3"},
        {0, "0"},
        {0xFFFFFF, "16777215"},
        {0x1000000, std::string("\1\0\0\0", 4)},
        {"trkn"_os, "trkn"},
        {0xA96E616D, "\xC2\xA9nam"},
    };
    for (const Code& tested : cases) {
        const auto item = readItem(atom(tested.code, {number(1)}));
        EXPECT_EQ(item->atomTypeString(), tested.shown);
        EXPECT_EQ(item->atomType(), tested.code);
    }
    EXPECT_EQ(readItem(atom(3))->atomDescription(), "Metadata Item ('3')");
}

TEST(MetadataItem, HoldsValuesAndAnythingElse) {
    const Bytes bytes =
        atom("----"_os, {atom("mean"_os, {u32(0), text("a")}), number(7), number(8)});
    const auto item = readItem(bytes);
    ASSERT_EQ(item->children().size(), 3U);
    EXPECT_EQ(item->children()[0]->atomName(), "Generic Atom");
    EXPECT_EQ(item->children()[2]->valueForKey("intValue"), Value(8));
    EXPECT_EQ(item->atomData(), bytes);
}

TEST(MetadataItem, IsAlwaysWrittenWithAShortHeader) {
    const auto item = readItem(extendedAtomClaiming(33, 5, {number(1)}));
    EXPECT_EQ(item->atomSize(), 33U);
    EXPECT_EQ(item->children().at(0)->offsetInFile(), 4096U + 16U);
    EXPECT_EQ(item->atomData(), atom(5, {number(1)}));
    EXPECT_EQ(item->atomSize(), 25U);

    const auto huge = readItem(extendedAtomClaiming(0x200000000, 5, {number(1)}));
    EXPECT_EQ(huge->atomData(), atom(5, {number(1)}));
}

TEST(MetadataItem, ASizeOfZeroLeavesOutTheHeader) {
    EXPECT_EQ(readItem(atomClaiming(0, 5, {number(1)}))->atomSize(), 17U);
    EXPECT_EQ(readItem(extendedAtomClaiming(0, 5, {number(1)}))->atomSize(), 25U);
}

TEST(MetadataItem, AChildOfEightBytesAtTheEndIsDropped) {
    const auto item = readItem(atom(5, {number(1), atom("free"_os)}));
    EXPECT_EQ(item->children().size(), 1U);
    EXPECT_EQ(item->atomData(), atom(5, {number(1)}));
}

TEST(MetadataItem, BytesThatAreNoHeaderAreDropped) {
    for (std::size_t count = 1; count < 8; ++count)
        EXPECT_EQ(readItem(atom(5, {number(1), Bytes(count, 0xEE)}))->atomData(),
                  atom(5, {number(1)}))
            << count;
}

TEST(MetadataItem, AValueThatIsTooShortEndsTheReading) {
    EXPECT_THROW(readItem(atom(5, {atom("data"_os, {u32(1)})})), InsertionError);
}

}  // namespace
}  // namespace vexqt

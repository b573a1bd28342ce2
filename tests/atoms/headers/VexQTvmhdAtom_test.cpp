#include "vexqt/atoms/headers/VexQTvmhdAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/structure/VexQTminfAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kAtom = join({
    u32(20), text("vmhd"),  //
    u8(3),                  // version
    u8(4), u8(5), u8(6),    // flags
    u16(0x1234),            // graphics mode
    u16(0xFEDC),            // red
    u16(0x4567),            // green
    u16(0x89AB),            // blue
});

TEST(VmhdAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto atom = VexQTvmhdAtom::initWithData(kAtom, &parent, 777);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 777U);
    EXPECT_EQ(atom->atomSize(), 20U);
    EXPECT_EQ(atom->atomTypeString(), "vmhd");
    EXPECT_EQ(atom->version(), 3);
    EXPECT_EQ(atom->flags0(), 4);
    EXPECT_EQ(atom->flags1(), 5);
    EXPECT_EQ(atom->flags2(), 6);
    EXPECT_EQ(atom->graphicsMode(), 0x1234);
    EXPECT_EQ(atom->opColor0(), 0xFEDC);
    EXPECT_EQ(atom->opColor1(), 0x4567);
    EXPECT_EQ(atom->opColor2(), 0x89AB);
    EXPECT_EQ(atom->unknownData(), std::nullopt);
}

TEST(VmhdAtom, WritesEveryField) {
    VexQTvmhdAtom atom;
    atom.setVersion(3);
    atom.setFlags0(4);
    atom.setFlags1(5);
    atom.setFlags2(6);
    atom.setGraphicsMode(0x1234);
    atom.setOpColor0(0xFEDC);
    atom.setOpColor1(0x4567);
    atom.setOpColor2(0x89AB);
    EXPECT_EQ(atom.atomData(), kAtom);
    EXPECT_EQ(atom.atomSize(), 20U);
}

TEST(VmhdAtom, BeginsWithZeros) {
    VexQTvmhdAtom atom;
    EXPECT_EQ(atom.graphicsMode(), 0);
    EXPECT_EQ(atom.opColor0(), 0);
    EXPECT_EQ(atom.opColor1(), 0);
    EXPECT_EQ(atom.opColor2(), 0);
    EXPECT_EQ(atom.atomName(), "Video Media Information Header");
    EXPECT_EQ(atom.atomNibName(), "VexQTvmhdAtom");
}

TEST(VmhdAtom, RefusesEveryOtherLength) {
    EXPECT_FALSE(VexQTvmhdAtom::initWithData(join({kAtom, u8(0)}), nullptr, 0));
    EXPECT_FALSE(VexQTvmhdAtom::initWithData(ByteView(kAtom).first(19), nullptr, 0));
    EXPECT_FALSE(VexQTvmhdAtom::initWithData({}, nullptr, 0));
}

TEST(VmhdAtom, ListsItsPropertiesInFileOrder) {
    std::vector<std::string_view> names;
    for (const Field* property : VexQTvmhdAtom().properties()) names.push_back(property->name);
    EXPECT_EQ(names,
              (std::vector<std::string_view>{"graphicsMode", "opColor0", "opColor1", "opColor2"}));
}

TEST(VmhdAtom, IsReadAsAChildOfTheMediaInformation) {
    const Bytes bytes = atom("minf"_os, {kAtom, atom("free"_os, {u8(0)})});
    const auto media = VexQTminfAtom::initWithData(bytes, nullptr, 100);
    ASSERT_EQ(media->children().size(), 2U);
    const auto* header = dynamic_cast<VexQTvmhdAtom*>(media->children().front().get());
    ASSERT_TRUE(header);
    EXPECT_EQ(header->offsetInFile(), 108U);
    EXPECT_EQ(media->atomData(), bytes);
}

}  // namespace
}  // namespace vexqt

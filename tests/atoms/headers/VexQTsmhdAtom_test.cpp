#include "vexqt/atoms/headers/VexQTsmhdAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/structure/VexQTminfAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes atomWithBalance(std::uint16_t balance) {
    return join({
        u32(16), text("smhd"),  //
        u8(3),                  // version
        zeros(3),               // flags
        u16(balance),           //
        zeros(2),               // reserved
    });
}

TEST(SmhdAtom, ReadsVersionAndBalance) {
    VexQTAtom parent;
    const auto atom = VexQTsmhdAtom::initWithData(atomWithBalance(0x0140), &parent, 777);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 777U);
    EXPECT_EQ(atom->atomSize(), 16U);
    EXPECT_EQ(atom->version(), 3);
    EXPECT_EQ(atom->balance(), 1.25F);
    EXPECT_EQ(atom->atomData(), atomWithBalance(0x0140));
}

TEST(SmhdAtom, ReadsANegativeBalanceOneLower) {
    EXPECT_EQ(VexQTsmhdAtom::initWithData(atomWithBalance(0xFF80), nullptr, 0)->balance(), -1.5F);
    EXPECT_EQ(VexQTsmhdAtom::initWithData(atomWithBalance(0x0080), nullptr, 0)->balance(), 0.5F);
}

TEST(SmhdAtom, WritesAFractionOfOneHalfOneLower) {
    VexQTsmhdAtom atom;
    atom.setVersion(3);
    atom.setBalance(0.25F);
    EXPECT_EQ(atom.atomData(), atomWithBalance(0x0040));
    atom.setBalance(0.5F);
    EXPECT_EQ(atom.atomData(), atomWithBalance(0xFF80));
    atom.setBalance(-1.25F);
    EXPECT_EQ(atom.atomData(), atomWithBalance(0xFEC0));
}

TEST(SmhdAtom, WrapsABalanceThatDoesNotFit) {
    VexQTsmhdAtom atom;
    atom.setVersion(3);
    atom.setBalance(129.25F);
    EXPECT_EQ(atom.atomData(), atomWithBalance(0x8140));
    atom.setBalance(257.25F);
    EXPECT_EQ(atom.atomData(), atomWithBalance(0x0140));
}

TEST(SmhdAtom, DoesNotReadItsFlagsButWritesItsOwn) {
    const Bytes bytes = join({
        u32(16), text("smhd"),  //
        u8(0),                  // version
        u8(0), u8(0), u8(1),    // flags
        u16(0),                 // balance
        u16(0xABCD),            // reserved
    });
    const auto atom = VexQTsmhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->flags2(), 0);
    EXPECT_EQ(atom->atomData(), join({u32(16), text("smhd"), zeros(8)}));
    atom->setFlags0(7);
    atom->setFlags1(8);
    atom->setFlags2(9);
    EXPECT_EQ(atom->atomData(),
              join({u32(16), text("smhd"), u8(0), u8(7), u8(8), u8(9), zeros(4)}));
}

TEST(SmhdAtom, BeginsInTheMiddle) {
    VexQTsmhdAtom atom;
    EXPECT_EQ(atom.balance(), 0.0F);
    EXPECT_EQ(atom.atomName(), "Sound Media Information Header");
    EXPECT_EQ(atom.atomNibName(), "VexQTsmhdAtom");
}

TEST(SmhdAtom, RefusesEveryOtherLength) {
    const Bytes bytes = atomWithBalance(0);
    EXPECT_FALSE(VexQTsmhdAtom::initWithData(join({bytes, u8(0)}), nullptr, 0));
    EXPECT_FALSE(VexQTsmhdAtom::initWithData(ByteView(bytes).first(15), nullptr, 0));
}

TEST(SmhdAtom, IsReadAsAChildOfTheMediaInformation) {
    const Bytes bytes = atom("minf"_os, {atomWithBalance(0x0140)});
    const auto media = VexQTminfAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(media->valueForKeyPath("smhd.balance"), Value(1.25));
}

}  // namespace
}  // namespace vexqt

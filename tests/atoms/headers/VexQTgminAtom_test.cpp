#include "vexqt/atoms/headers/VexQTgminAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/structure/VexQTgmhdAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes atomWithBalance(std::uint16_t balance) {
    return join({
        u32(24), text("gmin"),  //
        u8(3),                  // version
        u8(4), u8(5), u8(6),    // flags
        u16(0x1234),            // graphics mode
        u16(0xFEDC),            // red
        u16(0x4567),            // green
        u16(0x89AB),            // blue
        u16(balance),           //
        zeros(2),               // reserved
    });
}

TEST(GminAtom, ReadsEveryField) {
    VexQTAtom parent;
    const auto atom = VexQTgminAtom::initWithData(atomWithBalance(0x0100), &parent, 777);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 777U);
    EXPECT_EQ(atom->atomSize(), 24U);
    EXPECT_EQ(atom->version(), 3);
    EXPECT_EQ(atom->flags0(), 4);
    EXPECT_EQ(atom->flags1(), 5);
    EXPECT_EQ(atom->flags2(), 6);
    EXPECT_EQ(atom->graphicsMode(), 0x1234);
    EXPECT_EQ(atom->opColor0(), 0xFEDC);
    EXPECT_EQ(atom->opColor1(), 0x4567);
    EXPECT_EQ(atom->opColor2(), 0x89AB);
    EXPECT_EQ(atom->balance(), 0.00390625);
}

TEST(GminAtom, WritesEveryField) {
    VexQTgminAtom atom;
    atom.setVersion(3);
    atom.setFlags0(4);
    atom.setFlags1(5);
    atom.setFlags2(6);
    atom.setGraphicsMode(0x1234);
    atom.setOpColor0(0xFEDC);
    atom.setOpColor1(0x4567);
    atom.setOpColor2(0x89AB);
    atom.setBalance(0.75);
    EXPECT_EQ(atom.atomData(), atomWithBalance(0xC000));
}

TEST(GminAtom, WritesEveryBalanceThatItReadsBackUnchanged) {
    for (std::uint32_t balance = 0; balance <= 0xFFFF; ++balance) {
        const Bytes bytes = atomWithBalance(static_cast<std::uint16_t>(balance));
        const auto atom = VexQTgminAtom::initWithData(bytes, nullptr, 0);
        ASSERT_EQ(atom->balance(), balance / 65536.0);
        ASSERT_EQ(atom->atomData(), bytes) << balance;
    }
}

TEST(GminAtom, BeginsWithABalanceOfOneThatIsWrittenAsZero) {
    VexQTgminAtom atom;
    EXPECT_EQ(atom.balance(), 1.0);
    EXPECT_EQ(atom.atomData(), join({u32(24), text("gmin"), u8(1), zeros(15)}));
    EXPECT_EQ(atom.atomName(), "Base Media Information");
    EXPECT_EQ(atom.atomNibName(), "VexQTgminAtom");
}

TEST(GminAtom, WritesTheFractionOfABalanceAlone) {
    const auto atom = VexQTgminAtom::initWithData(atomWithBalance(0), nullptr, 0);
    atom->setBalance(2.75);
    EXPECT_EQ(atom->atomData(), atomWithBalance(0xC000));
    atom->setBalance(-0.25);
    EXPECT_EQ(atom->atomData(), atomWithBalance(0xC000));
}

TEST(GminAtom, WritesReservedBytesAsZero) {
    Bytes bytes = atomWithBalance(0);
    bytes[22] = 0xAB;
    bytes[23] = 0xCD;
    EXPECT_EQ(VexQTgminAtom::initWithData(bytes, nullptr, 0)->atomData(), atomWithBalance(0));
}

TEST(GminAtom, RefusesEveryOtherLength) {
    const Bytes bytes = atomWithBalance(0);
    EXPECT_FALSE(VexQTgminAtom::initWithData(join({bytes, u8(0)}), nullptr, 0));
    EXPECT_FALSE(VexQTgminAtom::initWithData(ByteView(bytes).first(23), nullptr, 0));
}

TEST(GminAtom, IsReadAsAChildOfTheBaseHeader) {
    const Bytes bytes = atom("gmhd"_os, {atomWithBalance(0x0100)});
    const auto header = VexQTgmhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(header->valueForKeyPath("gmin.balance"), Value(0.00390625));
    EXPECT_EQ(header->atomData(), bytes);
}

}  // namespace
}  // namespace vexqt

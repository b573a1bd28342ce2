#include "vexqt/atoms/headers/VexQTcrgnAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

TEST(CrgnAtom, SizeAndBoxAreReadWithTheirBytesReversedAndWrittenAsHeld) {
    const auto atom =
        VexQTcrgnAtom::initWithData(testing::atom("crgn"_os,
                                                  {
                                                      u16(0x000A),              // Size.
                                                      u64(0x0102030405060708),  // Box.
                                                  }),
                                    nullptr, 0);
    EXPECT_EQ(atom->regionSize(), 2560);
    EXPECT_EQ(atom->regionBoundaryBox(), 0x0807060504030201U);
    EXPECT_EQ(atom->regionData(), Bytes());
    EXPECT_EQ(atom->atomSize(), 18U);
    EXPECT_EQ(atom->atomData(), testing::atom("crgn"_os, {u16(0x0A00), u64(0x0807060504030201)}));
}

TEST(CrgnAtom, TheRegionBehindTheBoxIsKept) {
    const auto atom = VexQTcrgnAtom::initWithData(
        testing::atom("crgn"_os, {u16(0x0D00), zeros(8), Bytes{0xA1, 0xB2, 0xC3}}), nullptr, 0);
    EXPECT_EQ(atom->regionSize(), 13);
    EXPECT_EQ(atom->regionData(), (Bytes{0xA1, 0xB2, 0xC3}));
    EXPECT_EQ(atom->atomSize(), 21U);
    EXPECT_EQ(atom->unknownData(), std::nullopt);
    EXPECT_EQ(atom->atomData(),
              testing::atom("crgn"_os, {u16(0x000D), zeros(8), Bytes{0xA1, 0xB2, 0xC3}}));
}

TEST(CrgnAtom, EditsOfOneMadeInMemoryAreWritten) {
    VexQTcrgnAtom atom;
    EXPECT_EQ(atom.regionData(), Bytes());
    EXPECT_EQ(atom.atomData(), testing::atom("crgn"_os, {zeros(10)}));
    atom.setRegionSize(12);
    atom.setRegionBoundaryBox(0x0001000200030004);
    atom.setRegionData({7, 9});
    EXPECT_EQ(atom.atomData(),
              testing::atom("crgn"_os, {u16(12), u64(0x0001000200030004), Bytes{7, 9}}));
    EXPECT_EQ(atom.atomSize(), 20U);
}

}  // namespace
}  // namespace vexqt

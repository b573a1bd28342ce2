#include "vexqt/atoms/headers/VexQTtextAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "vexqt/atoms/structure/VexQTgmhdAtom.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

const Bytes kAtom = join({
    u32(44), text("text"),  //
    u32(0x00018000),        // a: 1.5
    u32(0x00024000),        // b: 2.25
    u32(0x40004000),        // u: 1 + 2^-16
    u32(0x00038000),        // c: 3.5
    u32(0x00044000),        // d: 4.25
    u32(0x40008000),        // v: 1 + 2^-15
    u32(0x0005C000),        // x: 5.75
    u32(0x00068000),        // y: 6.5
    u32(0x4000C000),        // w: 1 + 3 * 2^-16
});

const Matrix kMatrix = {1.5,           2.25, 1.0 + 0x1p-16, 3.5,          4.25,
                        1.0 + 0x1p-15, 5.75, 6.5,           1.0 + 0x3p-16};

TEST(TextAtom, ReadsItsMatrixAndNothingElse) {
    VexQTAtom parent;
    const auto atom = VexQTtextAtom::initWithData(kAtom, &parent, 777);
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->parent(), &parent);
    EXPECT_EQ(atom->offsetInFile(), 777U);
    EXPECT_EQ(atom->atomSize(), 44U);
    EXPECT_EQ(atom->matrix(), kMatrix);
    EXPECT_EQ(atom->version(), 1);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->atomData(), kAtom);
}

TEST(TextAtom, KeepsElementsUnrounded) {
    Bytes bytes = kAtom;
    bytes[8 + 24] = 0x12;  // x: 0x1205C001
    bytes[8 + 27] = 0x01;
    const auto atom = VexQTtextAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->matrixXValue(), 4613.0 + 49153.0 / 65536.0);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(TextAtom, WritesTheMatrixThatIsSet) {
    VexQTtextAtom atom;
    atom.setMatrix(kMatrix);
    EXPECT_EQ(atom.atomData(), kAtom);
}

TEST(TextAtom, BeginsWithAMatrixOfZeros) {
    VexQTtextAtom atom;
    EXPECT_EQ(atom.atomData(), join({u32(44), text("text"), zeros(36)}));
    EXPECT_EQ(atom.atomName(), "Text Media Information");
    EXPECT_EQ(atom.atomNibName(), std::nullopt);
}

TEST(TextAtom, RefusesEveryOtherLength) {
    EXPECT_FALSE(VexQTtextAtom::initWithData(join({kAtom, u8(0)}), nullptr, 0));
    EXPECT_FALSE(VexQTtextAtom::initWithData(ByteView(kAtom).first(43), nullptr, 0));
}

TEST(TextAtom, IsReadAsAChildOfTheBaseHeader) {
    const Bytes bytes = atom("gmhd"_os, {kAtom});
    const auto header = VexQTgmhdAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(header->valueForKeyPath("text.matrixDValue"), Value(4.25));
    EXPECT_EQ(header->atomData(), bytes);
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/headers/VexQTcolrAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes colours(OSType type, ByteView more = {}) {
    return atom("colr"_os, {
                               u32(type),
                               u16(9),   // Primaries.
                               u16(16),  // Transfer function.
                               u16(6),   // Matrix.
                               more,
                           });
}

TEST(ColrAtom, EveryFieldIsReadAndWritten) {
    const auto atom = VexQTcolrAtom::initWithData(colours("nclc"_os), nullptr, 0);
    EXPECT_EQ(atom->colorParameterType(), "nclc"_os);
    EXPECT_EQ(atom->primariesIndex(), 9);
    EXPECT_EQ(atom->transferFunctionIndex(), 16);
    EXPECT_EQ(atom->matrixIndex(), 6);
    EXPECT_EQ(atom->atomSize(), 18U);
    EXPECT_EQ(atom->atomData(), colours("nclc"_os));
}

TEST(ColrAtom, ATrailingRangeByteIsNeitherCountedNorWritten) {
    const auto atom = VexQTcolrAtom::initWithData(colours("nclx"_os, u8(0x80)), nullptr, 0);
    EXPECT_EQ(atom->colorParameterType(), "nclx"_os);
    EXPECT_EQ(atom->matrixIndex(), 6);
    EXPECT_EQ(atom->atomSize(), 18U);
    EXPECT_EQ(atom->atomData(), colours("nclx"_os));
}

TEST(ColrAtom, OneMadeInMemoryHasNoKind) {
    VexQTcolrAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("colr"_os, {text("????"), zeros(6)}));
}

TEST(ColrAtom, EditsAreWritten) {
    VexQTcolrAtom atom;
    atom.setColorParameterType("nclc"_os);
    atom.setPrimariesIndex(9);
    atom.setTransferFunctionIndex(16);
    atom.setValueForKey(6, "matrixIndex");
    EXPECT_EQ(atom.atomData(), colours("nclc"_os));
}

}  // namespace
}  // namespace vexqt

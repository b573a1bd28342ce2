#include "vexqt/atoms/headers/VexQTfielAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

TEST(FielAtom, EveryFieldIsReadAndWritten) {
    const Bytes bytes = atom("fiel"_os, {u8(2), u8(14)});
    const auto atom = VexQTfielAtom::initWithData(bytes, nullptr, 0);
    EXPECT_EQ(atom->numberOfFields(), 2);
    EXPECT_EQ(atom->fieldDominance(), 14);
    EXPECT_EQ(atom->atomData(), bytes);
}

TEST(FielAtom, FurtherBytesAreNeitherCountedNorWritten) {
    const auto atom = VexQTfielAtom::initWithData(
        testing::atom("fiel"_os, {u8(2), u8(9), u16(0xABCD)}), nullptr, 0);
    EXPECT_EQ(atom->atomSize(), 10U);
    EXPECT_EQ(atom->atomData(), testing::atom("fiel"_os, {u8(2), u8(9)}));
}

TEST(FielAtom, EditsOfOneMadeInMemoryAreWritten) {
    VexQTfielAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("fiel"_os, {zeros(2)}));
    atom.setNumberOfFields(2);
    atom.setFieldDominance(6);
    EXPECT_EQ(atom.atomData(), testing::atom("fiel"_os, {u8(2), u8(6)}));
}

}  // namespace
}  // namespace vexqt

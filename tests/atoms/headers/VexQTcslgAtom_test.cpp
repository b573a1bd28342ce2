#include "vexqt/atoms/headers/VexQTcslgAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes bounds(std::uint8_t version, std::initializer_list<std::uint8_t> flags) {
    return atom("cslg"_os, {
                               u8(version), Bytes(flags),
                               u32(101),         // Composition offset to display offset shift.
                               u32(0xFFFFFF9C),  // Least display offset.
                               u32(303),         // Greatest display offset.
                               u32(404),         // Display start time.
                               u32(505),         // Display end time.
                           });
}

TEST(CslgAtom, EveryFieldIsReadUnsigned) {
    const auto atom = VexQTcslgAtom::initWithData(bounds(3, {0, 0, 0}), nullptr, 0);
    EXPECT_EQ(atom->version(), 3);
    EXPECT_EQ(atom->compositionOffsetToDisplayOffsetShift(), 101U);
    EXPECT_EQ(atom->leastDisplayOffset(), 0xFFFFFF9CU);
    EXPECT_EQ(atom->greatestDisplayOffset(), 303U);
    EXPECT_EQ(atom->displayStartTime(), 404U);
    EXPECT_EQ(atom->displayEndTime(), 505U);
}

TEST(CslgAtom, FlagsAreNotReadAndTheVersionIsWrittenAsZero) {
    const auto atom = VexQTcslgAtom::initWithData(bounds(3, {4, 5, 6}), nullptr, 0);
    EXPECT_EQ(atom->flags0(), 0);
    EXPECT_EQ(atom->atomData(), bounds(0, {0, 0, 0}));
}

TEST(CslgAtom, EditsAreWrittenFlagsToo) {
    VexQTcslgAtom atom;
    EXPECT_EQ(atom.atomData(), testing::atom("cslg"_os, {zeros(24)}));
    atom.setFlags0(4);
    atom.setFlags1(5);
    atom.setFlags2(6);
    atom.setCompositionOffsetToDisplayOffsetShift(101);
    atom.setLeastDisplayOffset(0xFFFFFF9C);
    atom.setGreatestDisplayOffset(303);
    atom.setDisplayStartTime(404);
    atom.setDisplayEndTime(505);
    EXPECT_EQ(atom.atomData(), bounds(0, {4, 5, 6}));
}

}  // namespace
}  // namespace vexqt

#include "vexqt/atoms/headers/VexQTclapAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

Bytes cleanAperture() {
    return atom("clap"_os, {
                               u32(704),         // Width, numerator.
                               u32(11),          // Width, denominator.
                               u32(480),         // Height, numerator.
                               u32(13),          // Height, denominator.
                               u32(0xFFFFFFF8),  // Horizontal offset, numerator.
                               u32(17),          // Horizontal offset, denominator.
                               u32(5),           // Vertical offset, numerator.
                               u32(19),          // Vertical offset, denominator.
                           });
}

TEST(ClapAtom, EveryFieldIsReadUnsigned) {
    const auto atom = VexQTclapAtom::initWithData(cleanAperture(), nullptr, 0);
    EXPECT_EQ(atom->apertureWidth_N(), 704U);
    EXPECT_EQ(atom->apertureWidth_D(), 11U);
    EXPECT_EQ(atom->apertureHeight_N(), 480U);
    EXPECT_EQ(atom->apertureHeight_D(), 13U);
    EXPECT_EQ(atom->horizOff_N(), 0xFFFFFFF8U);
    EXPECT_EQ(atom->horizOff_D(), 17U);
    EXPECT_EQ(atom->vertOff_N(), 5U);
    EXPECT_EQ(atom->vertOff_D(), 19U);
    EXPECT_EQ(atom->atomData(), cleanAperture());
}

TEST(ClapAtom, OneMadeInMemoryHasItsSizeAlready) {
    VexQTclapAtom atom;
    EXPECT_EQ(atom.atomSize(), 40U);
    EXPECT_EQ(atom.offsetInFile(), 0U);
    EXPECT_EQ(atom.atomData(), testing::atom("clap"_os, {zeros(32)}));
}

TEST(ClapAtom, EditsAreWritten) {
    VexQTclapAtom atom;
    atom.setApertureWidth_N(704);
    atom.setApertureWidth_D(11);
    atom.setApertureHeight_N(480);
    atom.setApertureHeight_D(13);
    atom.setHorizOff_N(0xFFFFFFF8);
    atom.setHorizOff_D(17);
    atom.setVertOff_N(5);
    atom.setValueForKey(19, "vertOff_D");
    EXPECT_EQ(atom.atomData(), cleanAperture());
}

}  // namespace
}  // namespace vexqt

#include "vexqt/platform/Color.h"

#include <gtest/gtest.h>

#include "vexqt/platform/error.h"

namespace vexqt {
namespace {

TEST(Color, RGBColourHasItsComponents) {
    const Color color = Color::rgb(0.1, 0.2, 0.3, 0.4);
    EXPECT_FALSE(color.isGrey());
    EXPECT_EQ(color.red(), 0.1);
    EXPECT_EQ(color.green(), 0.2);
    EXPECT_EQ(color.blue(), 0.3);
    EXPECT_EQ(color.alpha(), 0.4);
}

TEST(Color, GreyLevelColourHasItsLevel) {
    const Color color = Color::grey(0.6, 0.7);
    EXPECT_TRUE(color.isGrey());
    EXPECT_EQ(color.white(), 0.6);
    EXPECT_EQ(color.alpha(), 0.7);
}

TEST(Color, IsOpaqueUnlessSaid) {
    EXPECT_EQ(Color::rgb(0, 0, 0).alpha(), 1.0);
    EXPECT_EQ(Color::grey(0).alpha(), 1.0);
}

TEST(Color, GreyLevelHasNoRedGreenAndBlue) {
    const Color grey = Color::grey(0.5);
    EXPECT_THROW(grey.red(), ColorSpaceError);
    EXPECT_THROW(grey.green(), ColorSpaceError);
    EXPECT_THROW(grey.blue(), ColorSpaceError);
}

TEST(Color, RGBHasNoGreyLevel) { EXPECT_THROW(Color::rgb(1, 1, 1).white(), ColorSpaceError); }

TEST(Color, ComparesEveryComponentAndTheKind) {
    const Color color = Color::rgb(0.1, 0.2, 0.3, 0.4);
    EXPECT_EQ(color, Color::rgb(0.1, 0.2, 0.3, 0.4));
    EXPECT_NE(color, Color::rgb(0.9, 0.2, 0.3, 0.4));
    EXPECT_NE(color, Color::rgb(0.1, 0.9, 0.3, 0.4));
    EXPECT_NE(color, Color::rgb(0.1, 0.2, 0.9, 0.4));
    EXPECT_NE(color, Color::rgb(0.1, 0.2, 0.3, 0.9));
    EXPECT_NE(Color::rgb(0, 0, 0), Color::grey(0));
}

}  // namespace
}  // namespace vexqt

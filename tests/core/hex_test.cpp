#include "vexqt/core/hex.h"

#include <gtest/gtest.h>

namespace vexqt {
namespace {

TEST(HexRepresentation, GivesTwoCapitalDigitsAndASpaceForEveryByte) {
    EXPECT_EQ(hexRepresentation(Bytes{0x00, 0x1A, 0xFF}), "00 1A FF ");
    EXPECT_EQ(hexRepresentation(Bytes{}), "");
}

TEST(AsciiRepresentation, ShowsPrintableBytesAndPointsForTheOthers) {
    EXPECT_EQ(asciiRepresentation(Bytes{0x41, 0x00, 0x7F, 0x20}), "A.. ");
    EXPECT_EQ(asciiRepresentation(Bytes{0x1F, 0x20, 0x7E, 0x80, 0xFF}), ". ~..");
    EXPECT_EQ(asciiRepresentation(Bytes{}), "");
}

TEST(DataFromHex, GivesNoDataWhateverTheText) {
    EXPECT_EQ(dataFromHex("00 1A FF "), std::nullopt);
    EXPECT_EQ(dataFromHex(""), std::nullopt);
}

}  // namespace
}  // namespace vexqt

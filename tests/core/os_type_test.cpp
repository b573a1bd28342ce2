#include "vexqt/core/os_type.h"

#include <gtest/gtest.h>

namespace vexqt {
namespace {

using namespace std::string_view_literals;

TEST(OSType, LiteralHasItsFirstCharacterInTheMostSignificantByte) {
    EXPECT_EQ("moov"_os, 0x6D6F6F76U);
    EXPECT_EQ("qt  "_os, 0x71742020U);
    EXPECT_EQ("\xA9nam"_os, 0xA96E616DU);
    EXPECT_EQ(kAnyType, 0x3F3F3F3FU);
}

TEST(TextFromCode, GivesOneCharacterAByte) {
    EXPECT_EQ(textFromCode(0x6D6F6F76), "moov");
    EXPECT_EQ(textFromCode(0xA96E616D), "\u00A9nam");
    EXPECT_EQ(textFromCode(0x8090FFC0), "\u0080\u0090\u00FF\u00C0");
    EXPECT_EQ(textFromCode(0x00017F20), "\0\x01\x7F "sv);
}

TEST(CodeFromText, IsTheInverseForEveryByte) {
    for (std::uint32_t byte = 0; byte < 256; ++byte)
        for (const int shift : {0, 8, 16, 24}) {
            const OSType code = (0x61626364U & ~(0xFFU << shift)) | byte << shift;
            ASSERT_EQ(codeFromText(textFromCode(code)), code);
        }
}

TEST(CodeFromText, GivesTheUnknownCodeForAnyOtherLength) {
    EXPECT_EQ(codeFromText(""), kAnyType);
    EXPECT_EQ(codeFromText("moo"), kAnyType);
    EXPECT_EQ(codeFromText("moovs"), kAnyType);
    EXPECT_EQ(codeFromText("\u00A9na"), kAnyType);  // Four bytes, three characters.
    EXPECT_EQ(codeFromText("\u00A9name"), kAnyType);
}

TEST(CodeFromText, GivesTheUnknownCodeForACharacterThatIsNoByte) {
    EXPECT_EQ(codeFromText("\u0100nam"), kAnyType);
    EXPECT_EQ(codeFromText("\u20ACnam"), kAnyType);
    EXPECT_EQ(codeFromText("na\U0001F600m"), kAnyType);
}

TEST(CodeFromText, GivesTheUnknownCodeForBrokenUTF8) {
    EXPECT_EQ(codeFromText("\xA9nam"), kAnyType);
    EXPECT_EQ(codeFromText("nam\xC2"), kAnyType);
    EXPECT_EQ(codeFromText("\xC3nam"), kAnyType);
    EXPECT_EQ(codeFromText("\xC1\x81nam"), kAnyType);  // A letter in two bytes.
}

TEST(PathSegment, ShowsPrintableCodesAsTheyAre) {
    EXPECT_EQ(pathSegment("trak"_os), "trak");
    EXPECT_EQ(pathSegment("qt  "_os), "qt  ");
    EXPECT_EQ(pathSegment("a~!\""_os), "a~!\"");
}

TEST(PathSegment, ShowsInHexadecimalWhatHasAMeaningInPathsOrNoShape) {
    EXPECT_EQ(pathSegment("a.bc"_os), "0x612E6263");
    EXPECT_EQ(pathSegment("a[0]"_os), "0x615B305D");
    EXPECT_EQ(pathSegment("a]bc"_os), "0x615D6263");
    EXPECT_EQ(pathSegment("a=bc"_os), "0x613D6263");
    EXPECT_EQ(pathSegment(0xA96E616D), "0xA96E616D");
    EXPECT_EQ(pathSegment(0x6162637F), "0x6162637F");
    EXPECT_EQ(pathSegment(0x0000000A), "0x0000000A");
}

}  // namespace
}  // namespace vexqt

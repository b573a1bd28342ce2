#include "vexqt/platform/error.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace vexqt {
namespace {

TEST(Error, SaysItsMessageAloneUntilAnAtomIsLeft) {
    const ValueError error("no text");
    EXPECT_STREQ(error.what(), "no text");
    EXPECT_EQ(error.message(), "no text");
    EXPECT_EQ(error.path(), "");
    EXPECT_EQ(error.offsetInFile(), 0U);
}

TEST(Error, GainsThePathOfAtomsFromTheInsideOut) {
    RangeError error(24, 4, 24);
    error.enter("mdia", 8);
    error.enter("trak[2]", 4);
    error.enter("moov", 0);
    EXPECT_EQ(error.path(), "moov.trak[2].mdia");
    EXPECT_STREQ(error.what(), "moov.trak[2].mdia at 8: 4 bytes wanted at 24, 24 there");
    EXPECT_EQ(error.message(), "4 bytes wanted at 24, 24 there");
}

TEST(Error, TheInnermostAtomFixesTheOffset) {
    Error error("broken");
    error.enter("stts", 0);
    error.enter("stbl", 77);
    EXPECT_EQ(error.offsetInFile(), 0U);
    EXPECT_STREQ(error.what(), "stbl.stts at 0: broken");
}

TEST(Error, CopyKeepsThePathAndGoesItsOwnWay) {
    Error error("broken");
    error.enter("stts", 8);
    Error copy = error;
    copy.enter("stbl", 0);
    EXPECT_STREQ(error.what(), "stts at 8: broken");
    EXPECT_STREQ(copy.what(), "stbl.stts at 8: broken");
}

TEST(Error, MovedFromStillHasItsTexts) {
    Error error("broken");
    const Error moved = std::move(error);
    EXPECT_STREQ(error.what(), "broken");  // NOLINT(bugprone-use-after-move): the claim.
    EXPECT_STREQ(moved.what(), "broken");
}

TEST(Error, CopyingNeverThrows) {
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<RangeError>);
    EXPECT_TRUE(std::is_nothrow_copy_assignable_v<RangeError>);
}

TEST(RangeError, CarriesWhatWasWantedAndWhatIsThere) {
    const RangeError error(24, 4, 26);
    EXPECT_EQ(error.offset(), 24U);
    EXPECT_EQ(error.count(), 4U);
    EXPECT_EQ(error.length(), 26U);
    EXPECT_STREQ(error.what(), "4 bytes wanted at 24, 26 there");
}

TEST(RangeError, MayHaveAMessageOfItsOwn) {
    const RangeError error("a size of 3 does not reach the next atom", 16, 3, 40);
    EXPECT_STREQ(error.what(), "a size of 3 does not reach the next atom");
    EXPECT_EQ(error.offset(), 16U);
    EXPECT_EQ(error.count(), 3U);
    EXPECT_EQ(error.length(), 40U);
}

TEST(UndefinedKeyError, NamesTheKey) {
    EXPECT_STREQ(UndefinedKeyError("colour").what(), "no property colour");
}

TEST(Error, IsTheBaseOfEveryKind) {
    EXPECT_THROW(throw RangeError(0, 1, 0), Error);
    EXPECT_THROW(throw InsertionError("x"), Error);
    EXPECT_THROW(throw NestingError("x"), Error);
    EXPECT_THROW(throw ColorSpaceError("x"), Error);
    EXPECT_THROW(throw UndefinedKeyError("x"), Error);
    EXPECT_THROW(throw ValueError("x"), Error);
    EXPECT_THROW(throw EncodingError("x"), Error);
    EXPECT_THROW(throw Error("x"), std::runtime_error);
}

}  // namespace
}  // namespace vexqt

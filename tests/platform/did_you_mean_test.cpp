#include "vexqt/platform/did_you_mean.h"

#include <gtest/gtest.h>

namespace vexqt {
namespace {

const std::vector<std::string> kCommands = {"show", "get", "set", "set-key", "properties"};

TEST(DidYouMean, TellsTheNameThatIsNear) {
    const struct {
        std::string what, mistyped, meant;
    } kCases[] = {
        {"two letters exchanged", "shwo", "show"},
        {"a letter left out", "shw", "show"},
        {"a letter too many", "shoow", "show"},
        {"another letter", "shaw", "show"},
        {"capitals", "SHOW", "show"},
        {"a part of it", "setkey", "set-key"},
        {"several in a long one", "propretis", "properties"},
    };
    for (const auto& [what, mistyped, meant] : kCases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(didYouMean(mistyped, kCommands), "; did you mean " + meant + "?");
    }
}

TEST(DidYouMean, TellsTheNearestOfSeveral) {
    EXPECT_EQ(didYouMean("sett", kCommands), "; did you mean set?");
    EXPECT_EQ(didYouMean("gett", kCommands), "; did you mean get?");
}

TEST(DidYouMean, IsSilentWhereNothingIsNear) {
    for (const std::string far : {"", "q", "transcode", "frobnicate"})
        EXPECT_EQ(didYouMean(far, kCommands), "") << far;
    EXPECT_EQ(didYouMean("get", {}), "");
    EXPECT_EQ(didYouMean("xyzd", {"tkhd"}), "") << "one letter of four";
}

TEST(DidYouMean, LooksAtNoNameThatIsVeryLong) {
    const std::string name(65, 'a');
    EXPECT_EQ(didYouMean(name, {name}), "");
}

}  // namespace
}  // namespace vexqt

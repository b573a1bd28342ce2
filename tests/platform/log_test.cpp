#include "vexqt/platform/log.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vexqt {
namespace {

/// Collects the lines and takes itself away when the test ends.
class Lines {
public:
    Lines() : before_(setLogSink([this](std::string_view line) { lines_.emplace_back(line); })) {}
    Lines(const Lines&) = delete;
    Lines& operator=(const Lines&) = delete;
    ~Lines() { setLogSink(before_); }

    const std::vector<std::string>& operator*() const { return lines_; }

private:
    std::vector<std::string> lines_;
    LogSink before_;
};

using Texts = std::vector<std::string>;

TEST(Log, LinesReachTheSinkInOrder) {
    const Lines lines;
    log("Empty Atom");
    log("100% of %s");
    EXPECT_EQ(*lines, (Texts{"Empty Atom", "100% of %s"}));
}

TEST(Log, SettingASinkGivesBackTheOneBefore) {
    const Lines outer;
    {
        const Lines inner;
        log("inside");
        EXPECT_EQ(*inner, Texts{"inside"});
    }
    log("outside");
    EXPECT_EQ(*outer, Texts{"outside"});
}

TEST(Log, WithoutASinkALineGoesToTheSystemAlone) {
    const LogSink before = setLogSink({});
    EXPECT_NO_THROW(log("nobody listens"));
    EXPECT_FALSE(setLogSink(before));
}

TEST(Log, ASinkMayLogAndReplaceItself) {
    Texts heard;
    const LogSink before = setLogSink([&](std::string_view line) {
        heard.emplace_back(line);
        setLogSink([&](std::string_view next) { heard.push_back("second: " + std::string(next)); });
        log("from within");
    });
    log("from outside");
    setLogSink(before);
    EXPECT_EQ(heard, (Texts{"from outside", "second: from within"}));
}

}  // namespace
}  // namespace vexqt

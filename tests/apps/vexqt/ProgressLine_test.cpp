#include "apps/vexqt/ProgressLine.h"

#include <gtest/gtest.h>

namespace vexqt::cli {
namespace {

/// A text that takes itself for a terminal.
class TerminalOutput final : public Output {
public:
    bool isTerminal() const override { return true; }
    const std::string& text() const { return text_; }
    /// What stands there in the end, blanks behind it included.
    std::string line() const {
        std::string line;
        std::size_t column = 0;
        for (const char c : text_) {
            if (c == '\r') {
                column = 0;
            } else if (c == '\b') {
                --column;
            } else {
                line.resize(std::max(line.size(), column + 1), ' ');
                line[column++] = c;
            }
        }
        return line;
    }

private:
    void send(std::string_view bytes) override { text_ += bytes; }

    std::string text_;
};

class ProgressLines : public ::testing::Test {
protected:
    template <class Errors>
    void tellIn(Errors& errors, const std::function<void(ProgressLine&)>& work) {
        Console console = {.out = out_, .err = errors};
        ProgressLine progress(console, "copying", [this] { return now_; });
        work(progress);
    }
    void wait(int milliseconds) { now_ += std::chrono::milliseconds(milliseconds); }

    TextOutput out_;
    std::chrono::steady_clock::time_point now_{};
};

TEST_F(ProgressLines, TellAfterASecondAndTenTimesASecond) {
    TerminalOutput errors;
    tellIn(errors, [&](ProgressLine& progress) {
        wait(999);
        progress.tell(100'000'000, 1'000'000'000);
        EXPECT_EQ(errors.line(), "");
        wait(1);
        progress.tell(200'000'000, 1'000'000'000);
        EXPECT_EQ(errors.line(), "vexqt: copying 200.0 of 1000.0 MB (20 %)");
        wait(99);
        progress.tell(999'999'999, 1'000'000'000);
        EXPECT_EQ(errors.line(), "vexqt: copying 200.0 of 1000.0 MB (20 %)");
        wait(1);
        progress.tell(999'999'999, 1'000'000'000);
        EXPECT_EQ(errors.line(), "vexqt: copying 1000.0 of 1000.0 MB (99 %)");
    });
}

TEST_F(ProgressLines, LeaveNothingBehind) {
    TerminalOutput errors;
    tellIn(errors, [&](ProgressLine& progress) {
        wait(1000);
        progress.tell(19'000'000'000, 20'000'000'000);
        wait(100);
        progress.tell(1, 20'000'000'000);
        EXPECT_EQ(errors.line(), "vexqt: copying 0.0 of 20.0 GB (0 %)  ");
    });
    EXPECT_EQ(errors.line().find_first_not_of(' '), std::string::npos);
    EXPECT_EQ(errors.text().back(), '\r');
    EXPECT_EQ(errors.text().find('\n'), std::string::npos);
}

TEST_F(ProgressLines, SayNothingOfWhatIsOverSoon) {
    TerminalOutput errors;
    tellIn(errors, [&](ProgressLine& progress) { progress.tell(1, 2); });
    EXPECT_EQ(errors.text(), "");
}

TEST_F(ProgressLines, AreForTerminalsAlone) {
    TextOutput errors;
    tellIn(errors, [&](ProgressLine& progress) {
        wait(60'000);
        progress.tell(1, 2);
    });
    EXPECT_EQ(errors.text(), "");
}

/// A terminal that was closed.
class GoneTerminal final : public Output {
public:
    bool isTerminal() const override { return true; }

private:
    void send(std::string_view) override { throw OutputError("gone"); }
};

TEST_F(ProgressLines, DoNotStopASaveWhereTheTerminalIsGone) {
    GoneTerminal errors;
    tellIn(errors, [&](ProgressLine& progress) {
        wait(2000);
        progress.tell(1, 2);
        wait(2000);
        progress.tell(2, 2);
    });
}

}  // namespace
}  // namespace vexqt::cli

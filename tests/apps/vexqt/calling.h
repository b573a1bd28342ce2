// Calling the command inside of the test's own process.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "apps/vexqt/command_line.h"
#include "testing/files.h"
#include "testing/small_movie.h"

namespace vexqt::cli {

struct Called {
    int status = -1;
    std::string output, errors;
};

/// The schema that a document has which such a call prints; empty for a call that prints none.
inline std::string schemaOf(const std::vector<std::string>& arguments) {
    const auto has = [&](std::string_view word) {
        return std::ranges::find(arguments, word) != arguments.end();
    };
    if (arguments.empty()) return "";
    if (arguments[0] == "json") return "json";
    if (has("--report")) return "report";
    return has("--json") && (arguments[0] == "check" || arguments[0] == "properties") ? arguments[0]
                                                                                      : "";
}

/// Keeps what a call printed in the file that the environment names, for whoever wants to compare
/// all documents with their schemas at once.
inline void keepDocuments(const std::vector<std::string>& arguments, const std::string& output) {
    const char* file = std::getenv("VEXQT_KEPT_DOCUMENTS");
    const std::string schema = schemaOf(arguments);
    const bool isHelp = output.empty() || output[0] != '{';
    if (file == nullptr || schema.empty() || isHelp) return;
    std::ofstream(file, std::ios::app | std::ios::binary) << schema << ' ' << output.size() << '\n'
                                                          << output;
}

/// With standard input at its end.
inline Called call(const std::vector<std::string>& arguments) {
    TextOutput out, errors;
    const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    Called called;
    called.status = run(arguments, out, errors, input);
    ::close(input);
    called.output = out.text();
    called.errors = errors.text();
    keepDocuments(arguments, called.output);
    return called;
}

/// Restores the value that a variable of the environment had.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~EnvironmentVariable() { set(before_ ? before_->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void set(const char* value) {
        value != nullptr ? ::setenv(name_, value, 1) : ::unsetenv(name_);
    }

    const char* name_;
    std::optional<std::string> before_;
};

/// A folder with the small movie in it.
class CommandTest : public ::testing::Test {
protected:
    CommandTest() { testing::writeFile(movie_, testing::smallMovie()); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    std::string write(const std::string& name, const Bytes& bytes) const {
        testing::writeFile(folder_ / name, bytes);
        return path(name);
    }
    /// What standard error has of a file: "vexqt: FILE: " in front of it, a line end behind.
    static std::string said(const std::string& file, const std::string& what) {
        return "vexqt: " + file + ": " + what + "\n";
    }

    testing::TemporaryFolder folder_;
    testing::TemporaryFolder state_;  ///< Where undo records are kept.
    const EnvironmentVariable stateHome_{"XDG_STATE_HOME", state_.path().c_str()};
    const EnvironmentVariable undo_{"VEXQT_UNDO", nullptr};
    const std::string movie_ = (folder_ / "clip.mov").string();
};

}  // namespace vexqt::cli

#pragma once

#include <exception>

namespace vexqt::cli {

/// Somebody has pressed Ctrl-C, or otherwise asked the program to end.
class Interrupted : public std::exception {
public:
    explicit Interrupted(int signal) : signal_(signal) {}
    const char* what() const noexcept override { return "interrupted"; }

    /// Ends the process as if nobody had caught the signal, so that those who called it know.
    [[noreturn]] void endProcess() const;

private:
    int signal_;
};

/// As long as one lives, SIGINT, SIGTERM and SIGHUP wait for check(): what was begun is taken back
/// or brought to its end, and leaves no half of a copy and no journal. Of several that live at a
/// time, in as many threads, each is told.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// \throws Interrupted
    void check() const;
};

}  // namespace vexqt::cli

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "apps/vexqt/commands.h"

namespace vexqt::cli {

/// Tells on a terminal how far something is that takes long, in one line that is gone at the end.
/// Standard error that is no terminal hears nothing of it.
class ProgressLine {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// What is over sooner is not told of.
    static constexpr std::chrono::milliseconds kPatience{1000};

    /// What is being done: "copying".
    ProgressLine(Console& console, std::string doing, Clock clock = std::chrono::steady_clock::now);
    ~ProgressLine() { end(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// So many bytes of all of them.
    void tell(std::uint64_t done, std::uint64_t total);
    /// Takes the line away, before anything else is said.
    void end();

private:
    void show(const std::string& line);

    Console& console_;
    std::string doing_;
    Clock clock_;
    std::chrono::steady_clock::time_point next_;
    std::size_t shown_ = 0;  ///< Columns of the line that stands there.
    bool isHeard_;
};

}  // namespace vexqt::cli

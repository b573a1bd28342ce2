#include "apps/vexqt/ProgressLine.h"

#include <fmt/format.h>

#include <cmath>

namespace vexqt::cli {

namespace {

constexpr std::chrono::milliseconds kBetweenTwo{100};

/// Amounts of bytes in the unit that the whole of them is told in.
struct Unit {
    double bytes;
    std::string_view name;

    static Unit of(std::uint64_t total) {
        if (total >= 10'000'000'000) return {1e9, "GB"};
        return {1e6, "MB"};
    }
};

}  // namespace

ProgressLine::ProgressLine(Console& console, std::string doing, Clock clock)
    : console_(console),
      doing_(std::move(doing)),
      clock_(std::move(clock)),
      next_(clock_() + kPatience),
      isHeard_(console.err.isTerminal()) {}

void ProgressLine::tell(std::uint64_t done, std::uint64_t total) {
    if (!isHeard_ || total == 0) return;
    const auto now = clock_();
    if (now < next_) return;
    next_ = now + kBetweenTwo;
    const Unit unit = Unit::of(total);
    const auto in = [&](std::uint64_t bytes) { return static_cast<double>(bytes) / unit.bytes; };
    show(fmt::format("vexqt: {} {:.1f} of {:.1f} {} ({:.0f} %)", doing_, in(done), in(total),
                     unit.name, std::floor(100.0 * in(done) / in(total))));
}

void ProgressLine::end() {
    if (shown_ == 0) return;
    show("");
    shown_ = 0;
}

/// Over the line that stands there, with blanks over what of it is longer.
void ProgressLine::show(const std::string& line) {
    const std::size_t longer = shown_ > line.size() ? shown_ - line.size() : 0;
    try {
        console_.err.write("\r" + line + std::string(longer, ' ') +
                           (line.empty() ? "\r" : std::string(longer, '\b')));
        console_.err.flush();
        shown_ = line.size();
    } catch (const std::exception&) {
        isHeard_ = false;  // A terminal that was closed does not stop a save.
    }
}

}  // namespace vexqt::cli

// What every fuzzer does first, and how it takes its input apart.
#pragma once

#include "testing/claims.h"
#include "vexqt/platform/log.h"

namespace vexqt::fuzzing {

/// Sends the lines of the log nowhere.
inline void beQuiet() {
    static const bool isQuiet = [] {
        setLogSink([](std::string_view) {});
        return true;
    }();
    static_cast<void>(isQuiet);
}

/// An input whose last bytes are decisions, so that what lies in front of them is a whole movie
/// whatever becomes of them. Its very last byte says how many.
struct MovieAndDecisions {
    explicit MovieAndDecisions(ByteView input)
        : movie(input.first(input.size() - count(input))),
          decisions(input.subspan(movie.size(), count(input) - (input.empty() ? 0 : 1))) {}

    ByteView movie;
    testing::Decisions decisions;

private:
    static std::size_t count(ByteView input) {
        return input.empty() ? 0 : std::min<std::size_t>(input.size(), input.back() + 1U);
    }
};

}  // namespace vexqt::fuzzing

// The work that the library does, counted: the program that has this is compiled so that every
// stretch of code between two branches reports that it was run.
#pragma once

#include <cstdint>

namespace vexqt::testing {

/// How many stretches of code the library, and the standard library's code in it, have run since
/// this was made. The count is the same in every run, on every machine.
class WorkWatch {
public:
    WorkWatch();
    std::uint64_t count() const;

private:
    std::uint64_t before_;
};

}  // namespace vexqt::testing

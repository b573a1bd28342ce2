// Setting the same values in many movies.
#pragma once

#include "apps/vexqt/commands.h"

namespace vexqt::cli {

/// Applies the file of settings to every movie, and prints a line a movie: what became of it, and
/// why. A movie that is refused or fails stops none of the others.
ExitStatus setFrom(const Arguments& arguments, Console& console);

/// The assignments in a file of settings, one a line: "PATH.KEY=VALUE". Blank lines, and those that
/// begin with #, say nothing. Blanks around the key do not count, those of the value do.
/// \throws Failure, with the line, for what is no assignment.
std::vector<std::string> assignmentsIn(std::string_view settings);

}  // namespace vexqt::cli

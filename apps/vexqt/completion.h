// What the shells offer when somebody presses Tab.
#pragma once

#include <span>

#include "apps/vexqt/commands.h"

namespace vexqt::cli {

/// The command that shells call; it stands in no help.
inline constexpr std::string_view kCompleteCommand = "__complete";

/// Prints what the last of the words can become, the others being what stands before it on the
/// command line: a line for each possibility, with what it is behind a tab. What ends with a point,
/// an equals sign or an opening bracket goes on. The line ":files" says that names of files may
/// stand there too. A movie on the line that cannot be read has no paths.
ExitStatus complete(std::span<const std::string> words, Console& console);

}  // namespace vexqt::cli

// Going through many files, several at once.
#pragma once

#include <functional>

#include "apps/vexqt/commands.h"

namespace vexqt::cli {

enum class AfterFailure { GoOn, End };

/// Does some work on every file, --jobs of them at a time, and gives the worst status. Each piece
/// of work has a console of its own; what is said there arrives in the order of the files, as if
/// they had been worked on one behind the other. The output's own errors end it all and pass.
ExitStatus forEachFile(
    const Arguments& arguments, Console& console, AfterFailure afterFailure,
    const std::function<ExitStatus(const std::string& file, Console& console)>& work);

}  // namespace vexqt::cli

// Where the library says in words what it met in a file.
#pragma once

#include <functional>
#include <string_view>

#include "vexqt/export.h"

namespace vexqt {

/// Called with each line, which has no line end.
using LogSink = std::function<void(std::string_view line)>;

/// Writes a line to the system log and hands it to the sink, if there is one.
VEXQT_EXPORT void log(std::string_view line);

/// Hands every further line to the sink, an empty one for nobody; gives back the one before. May
/// be called at any time and from any thread, from within a sink too.
VEXQT_EXPORT LogSink setLogSink(LogSink sink);

}  // namespace vexqt

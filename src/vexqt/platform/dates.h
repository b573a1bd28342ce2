// Points in time as text: "2001-01-01T00:00:00Z".
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "vexqt/export.h"

namespace vexqt {

/// A point in time, in whole seconds.
using Date = std::chrono::sys_seconds;

/// The date in UTC. Years have four digits or as many more as they need, and a minus sign before
/// the year 0.
VEXQT_EXPORT std::string textFromDate(Date date);

/// The date that a text names: a day, or a day and a time of day after a "T" or a space, with or
/// without the "Z". Years have four digits. Absent for anything else.
VEXQT_EXPORT std::optional<Date> dateFromText(std::string_view text);

}  // namespace vexqt

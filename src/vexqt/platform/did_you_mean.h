// Names that people mistyped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vexqt/export.h"

namespace vexqt {

/// "; did you mean timeScale?", to stand behind a message that says that there is no such name;
/// empty where none of the names that are there is near.
VEXQT_EXPORT std::string didYouMean(std::string_view name, const std::vector<std::string>& there);

}  // namespace vexqt

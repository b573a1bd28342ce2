// The command line of vexqt: parsing it, its help, and running what it asks for.
#pragma once

#include <string>
#include <vector>

#include "apps/vexqt/Output.h"

namespace vexqt::cli {

/// Runs the command with what stands behind its name, and returns its exit status. The input is a
/// descriptor that "-" is read from.
int run(const std::vector<std::string>& arguments, Output& out, Output& err, int input);

}  // namespace vexqt::cli

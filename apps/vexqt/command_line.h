// The command line of vexqt: parsing it, its help, and running what it asks for.
#pragma once

#include <string>
#include <vector>

#include "apps/vexqt/Output.h"

namespace vexqt::cli {

/// Runs the command with what stands behind its name, and returns its exit status. The input is a
/// descriptor that "-" is read from.
int run(const std::vector<std::string>& arguments, Output& out, Output& err, int input);

/// What a command takes, for those who help people to write it.
struct CommandOutline {
    struct Option {
        std::vector<std::string> names;  ///< "-o", "--output"
        std::string value;               ///< "OUT"; empty for one that takes none.
        std::string about;
    };
    std::string_view name, does;
    std::string_view operands;  ///< What stands behind FILE: "PATH ATOMFILE".
    bool repeatsLastOperand = false;
    bool takesFile = false;
    bool takesSeveralFiles = false;
    std::vector<Option> options;
};
std::vector<CommandOutline> commandOutlines();

}  // namespace vexqt::cli

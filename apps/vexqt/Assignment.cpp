#include "apps/vexqt/Assignment.h"

#include "apps/vexqt/commands.h"

namespace vexqt::cli {

Assignment::Assignment(const std::string& text) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '[') ++depth;
        if (text[i] == ']') --depth;
        if (text[i] != '=' || depth > 0) continue;
        key = text.substr(0, i);
        value = text.substr(i + 1);
        return;
    }
    throw Failure("'" + text + "' is no assignment: KEY=VALUE", ExitStatus::WrongUsage);
}

}  // namespace vexqt::cli

#pragma once

#include <string>

namespace vexqt::cli {

/// "PATH.KEY=VALUE"; an equals sign in brackets belongs to the path.
struct Assignment {
    std::string key, value;

    /// \throws Failure for a text without an equals sign.
    explicit Assignment(const std::string& text);
};

}  // namespace vexqt::cli

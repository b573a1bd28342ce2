// What the library logs while somebody looks.
#pragma once

#include <string>
#include <vector>

#include "vexqt/platform/log.h"

namespace vexqt::testing {

/// Collects every line from its construction on, in the place of the sink that there was.
class LogLines {
public:
    LogLines() {
        previous_ = setLogSink([this](std::string_view line) { lines.emplace_back(line); });
    }
    ~LogLines() { setLogSink(previous_); }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    std::vector<std::string> lines;

private:
    LogSink previous_;
};

}  // namespace vexqt::testing

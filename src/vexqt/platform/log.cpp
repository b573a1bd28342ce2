#include "vexqt/platform/log.h"

#include <syslog.h>

#include <mutex>
#include <string>
#include <utility>

namespace vexqt {

namespace {

struct Log {
    Log() { openlog("vexqt", 0, LOG_USER); }

    std::mutex mutex;
    LogSink sink;
};

Log& theLog() {
    static Log log;
    return log;
}

}  // namespace

void log(std::string_view line) {
    Log& shared = theLog();
    syslog(LOG_NOTICE, "%s", std::string(line).c_str());

    // Called without the lock, so that a sink may log and may be replaced from within.
    const LogSink sink = [&] {
        const std::lock_guard lock(shared.mutex);
        return shared.sink;
    }();
    if (sink) sink(line);
}

LogSink setLogSink(LogSink sink) {
    Log& shared = theLog();
    const std::lock_guard lock(shared.mutex);
    return std::exchange(shared.sink, std::move(sink));
}

}  // namespace vexqt

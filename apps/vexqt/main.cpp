#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "apps/vexqt/Interruption.h"
#include "apps/vexqt/command_line.h"

int main(int argc, char** argv) {
    using vexqt::cli::DescriptorOutput;
    // A closed pipe is met where it is written to.
    std::signal(SIGPIPE, SIG_IGN);
    // A movie that is opened must not take the place of a standard stream that is closed. What
    // stands in for it can be neither read nor written.
    while (true) {
        const int descriptor = ::open("/dev/null", O_PATH | O_CLOEXEC);
        if (descriptor > STDERR_FILENO) ::close(descriptor);
        if (descriptor < 0 || descriptor > STDERR_FILENO) break;
    }
    DescriptorOutput out(STDOUT_FILENO, "standard output");
    DescriptorOutput err(STDERR_FILENO, "standard error");
    try {
        return vexqt::cli::run({argv + 1, argv + argc}, out, err, STDIN_FILENO);
    } catch (const vexqt::cli::Interrupted& interrupted) {
        interrupted.endProcess();
    }
}

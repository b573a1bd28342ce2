#include "apps/vexqt/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace vexqt::cli {

void Output::write(std::string_view bytes) {
    if (bytes.empty()) return;  // An empty view may have no address.
    if (bytes.size() > kCapacity - used_) {
        flush();
        if (bytes.size() > kCapacity) return send(bytes);
    }
    std::memcpy(buffer_.get() + used_, bytes.data(), bytes.size());
    used_ += bytes.size();
}

void Output::flush() {
    // What cannot be sent now is not sent again later.
    const std::string_view bytes(buffer_.get(), std::exchange(used_, 0));
    if (!bytes.empty()) send(bytes);
}

bool DescriptorOutput::isTerminal() const { return isatty(descriptor_) == 1; }

void DescriptorOutput::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::write(descriptor_, bytes.data(), bytes.size());
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (errno == EINTR) continue;
        if (errno == EPIPE) throw OutputClosed();
        if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // Somebody made the pipe one that does not wait; then we do.
            pollfd waiting = {.fd = descriptor_, .events = POLLOUT, .revents = 0};
            if (poll(&waiting, 1, -1) >= 0 || errno == EINTR) continue;
        }
        throw OutputError(name_ + ": " + std::generic_category().message(errno));
    }
}

}  // namespace vexqt::cli

#include "apps/vexqt/Interruption.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <mutex>

namespace vexqt::cli {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t received = 0;
std::array<struct sigaction, kSignals.size()> before;
std::mutex mutex;  // Of what follows: several movies may be saved at a time.
std::size_t count = 0;

void receive(int signal) { received = signal; }

}  // namespace

void Interrupted::endProcess() const {
    std::signal(signal_, SIG_DFL);
    std::raise(signal_);
    std::_Exit(128 + signal_);  // Somebody has blocked it.
}

Interruption::Interruption() {
    const std::lock_guard lock(mutex);
    if (count++ > 0) return;
    received = 0;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        struct sigaction action = {};
        action.sa_handler = receive;
        action.sa_flags = SA_RESTART;
        ::sigaction(kSignals[i], nullptr, &before[i]);
        // What nohup has switched off stays off.
        if (before[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
    }
}

Interruption::~Interruption() {
    const std::lock_guard lock(mutex);
    if (--count > 0) return;
    for (std::size_t i = 0; i < kSignals.size(); ++i) ::sigaction(kSignals[i], &before[i], nullptr);
}

void Interruption::check() const {
    if (received != 0) throw Interrupted(received);
}

}  // namespace vexqt::cli

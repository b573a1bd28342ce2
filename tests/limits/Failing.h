// Calls that are counted, and can be made to fail.
#pragma once

#include <atomic>
#include <cstdint>

namespace vexqt::testing {

/// Counts calls, on every thread, and says which of them is to fail.
class FailureCounter {
public:
    enum class Then {
        Recovers,  ///< One call fails, those after it do not.
        StaysFull  ///< Every call fails from that one on.
    };

    /// Counts a call. True where it is to fail.
    bool count() {
        const std::uint64_t number = ++calls_;
        const std::uint64_t failsAt = failsAt_;
        if (failsAt == 0 || number < failsAt || (number > failsAt && !staysFull_)) return false;
        hasFailed_ = true;
        return true;
    }
    std::uint64_t calls() const { return calls_; }
    bool hasFailed() const { return hasFailed_; }

    void failAt(std::uint64_t n, Then then) {
        hasFailed_ = false;
        staysFull_ = then == Then::StaysFull;
        failsAt_ = calls_ + n;
    }
    void stopFailing() { failsAt_ = 0; }

private:
    std::atomic<std::uint64_t> calls_{0};
    std::atomic<std::uint64_t> failsAt_{0};  ///< 0 while nothing fails.
    std::atomic<bool> staysFull_{false}, hasFailed_{false};
};

/// Makes calls fail while it lives.
class Failing {
public:
    using Then = FailureCounter::Then;

    /// The n-th call from now on fails; the first is 1.
    Failing(FailureCounter& counter, std::uint64_t n, Then then) : counter_(counter) {
        counter_.failAt(n, then);
    }
    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;
    ~Failing() { counter_.stopFailing(); }

    /// Whether one has failed.
    bool hasFailed() const { return counter_.hasFailed(); }

private:
    FailureCounter& counter_;
};

}  // namespace vexqt::testing

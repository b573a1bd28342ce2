#include "limits/Work.h"

static std::uint64_t stretches = 0;

// The compiler calls this at the beginning of every stretch.
extern "C" void __sanitizer_cov_trace_pc() { ++stretches; }

namespace vexqt::testing {

WorkWatch::WorkWatch() : before_(stretches) {}

std::uint64_t WorkWatch::count() const { return stretches - before_; }

}  // namespace vexqt::testing

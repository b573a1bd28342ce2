#include "limits/Malloc.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

// The names under which the C library has what this file replaces.
extern "C" {
void* __libc_malloc(std::size_t length);
void* __libc_calloc(std::size_t count, std::size_t length);
void* __libc_realloc(void* block, std::size_t length);
void __libc_free(void* block);
}

namespace {

struct State {
    std::atomic<std::int64_t> live{0};
    vexqt::testing::FailureCounter calls;
};
constinit State state;

bool isToFail() {
    if (!state.calls.count()) return false;
    errno = ENOMEM;
    return true;
}

void* counted(void* block) {
    if (block != nullptr) ++state.live;
    return block;
}

}  // namespace

extern "C" {
void* malloc(std::size_t length) { return isToFail() ? nullptr : counted(__libc_malloc(length)); }
void* calloc(std::size_t count, std::size_t length) {
    return isToFail() ? nullptr : counted(__libc_calloc(count, length));
}
void* realloc(void* block, std::size_t length) {
    if (isToFail()) return nullptr;
    void* const grown = __libc_realloc(block, length);
    if (block == nullptr) return counted(grown);
    if (grown == nullptr && length == 0) --state.live;
    return grown;
}
void free(void* block) {
    if (block != nullptr) --state.live;
    __libc_free(block);
}
}

namespace vexqt::testing {

std::int64_t liveBlocks() { return state.live; }

FailingMalloc::FailingMalloc(std::uint64_t n, Then then) : Failing(state.calls, n, then) {}

}  // namespace vexqt::testing

#include "limits/Heap.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

struct State {
    std::atomic<std::int64_t> live{0}, peak{0};
    std::atomic<std::uint64_t> largest{0};
    vexqt::testing::FailureCounter allocations;
};
constinit State state;

/// In front of every block stands its length, as wide as any block must be aligned.
constexpr std::size_t kPrefix = alignof(std::max_align_t);

void count(std::size_t length) {
    if (state.allocations.count()) throw std::bad_alloc();
    const std::int64_t live = state.live += static_cast<std::int64_t>(length);
    if (live > state.peak) state.peak = live;
    if (length > state.largest) state.largest = length;
}

void* allocate(std::size_t length, std::size_t alignment) {
    count(length);
    const std::size_t prefix = std::max(kPrefix, alignment);
    if (length > SIZE_MAX - 2 * prefix) throw std::bad_alloc();
    void* const block =
        std::aligned_alloc(prefix, (prefix + length + prefix - 1) / prefix * prefix);
    if (block == nullptr) throw std::bad_alloc();
    auto* const bytes = static_cast<unsigned char*>(block) + prefix;
    *reinterpret_cast<std::size_t*>(bytes - kPrefix) = length;
    return bytes;
}

void release(void* pointer, std::size_t alignment) noexcept {
    if (pointer == nullptr) return;
    auto* const bytes = static_cast<unsigned char*>(pointer);
    state.live -= static_cast<std::int64_t>(*reinterpret_cast<std::size_t*>(bytes - kPrefix));
    std::free(bytes - std::max(kPrefix, alignment));
}

void* allocateOrNull(std::size_t length, std::size_t alignment) noexcept {
    try {
        return allocate(length, alignment);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::size_t in(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

}  // namespace

void* operator new(std::size_t length) { return allocate(length, kPrefix); }
void* operator new[](std::size_t length) { return allocate(length, kPrefix); }
void* operator new(std::size_t length, std::align_val_t alignment) {
    return allocate(length, in(alignment));
}
void* operator new[](std::size_t length, std::align_val_t alignment) {
    return allocate(length, in(alignment));
}
void* operator new(std::size_t length, const std::nothrow_t&) noexcept {
    return allocateOrNull(length, kPrefix);
}
void* operator new[](std::size_t length, const std::nothrow_t&) noexcept {
    return allocateOrNull(length, kPrefix);
}
void operator delete(void* pointer) noexcept { release(pointer, kPrefix); }
void operator delete[](void* pointer) noexcept { release(pointer, kPrefix); }
void operator delete(void* pointer, std::size_t) noexcept { release(pointer, kPrefix); }
void operator delete[](void* pointer, std::size_t) noexcept { release(pointer, kPrefix); }
void operator delete(void* pointer, const std::nothrow_t&) noexcept { release(pointer, kPrefix); }
void operator delete[](void* pointer, const std::nothrow_t&) noexcept { release(pointer, kPrefix); }
void operator delete(void* pointer, std::align_val_t alignment) noexcept {
    release(pointer, in(alignment));
}
void operator delete[](void* pointer, std::align_val_t alignment) noexcept {
    release(pointer, in(alignment));
}
void operator delete(void* pointer, std::size_t, std::align_val_t alignment) noexcept {
    release(pointer, in(alignment));
}
void operator delete[](void* pointer, std::size_t, std::align_val_t alignment) noexcept {
    release(pointer, in(alignment));
}

namespace vexqt::testing {

HeapWatch::HeapWatch() : liveBefore_(state.live), allocationsBefore_(state.allocations.calls()) {
    state.peak = liveBefore_;
    state.largest = 0;
}

std::int64_t HeapWatch::live() const { return state.live - liveBefore_; }
std::uint64_t HeapWatch::peak() const {
    return static_cast<std::uint64_t>(state.peak - liveBefore_);
}
std::uint64_t HeapWatch::largest() const { return state.largest; }
std::uint64_t HeapWatch::allocations() const {
    return state.allocations.calls() - allocationsBefore_;
}

FailingHeap::FailingHeap(std::uint64_t n, Then then) : Failing(state.allocations, n, then) {}

}  // namespace vexqt::testing

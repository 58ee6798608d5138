// The C++ runtime's own memory, apart from the library's.
//
// To throw an exception the runtime needs some memory of its own the first time: a record of the thread, a
// mutex. Where it gets none it ends the process, and the process is the agent's. And what it once has it
// never gives back, not even when the library is unloaded. So the linker sends every malloc() of this library
// through here. They are the runtime's alone: `new` has its own way, below, and fails as it should.

#include "runtime/runtime_memory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void __real_free(void* block);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
}

namespace {

constexpr std::size_t kBlockBytes = 1024;  // more than any record of the runtime
constexpr std::size_t kBlocks = 64;

struct alignas(std::max_align_t) Block {
    std::array<unsigned char, kBlockBytes> bytes;
};

std::array<Block, kBlocks> reserve;
std::array<std::atomic_flag, kBlocks> taken;

void* TakeFromReserve(std::size_t size) {
    if (size > kBlockBytes) {
        return nullptr;
    }
    for (std::size_t i = 0; i < kBlocks; ++i) {
        if (!taken[i].test_and_set()) {
            return reserve[i].bytes.data();
        }
    }
    return nullptr;
}

// The block's number; kBlocks when it is none of the reserve's.
std::size_t NumberOf(const void* block) {
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    const auto begin = reinterpret_cast<std::uintptr_t>(reserve.data());
    return address >= begin && address < begin + sizeof(reserve) ? (address - begin) / sizeof(Block)
                                                                 : kBlocks;
}

// The runtime's blocks that live: a few dozen at most.
constexpr std::size_t kMostTracked = 1024;
std::array<void*, kMostTracked> tracked;
std::size_t tracked_count = 0;
std::atomic_flag tracked_lock;

class TrackedLock {
public:
    TrackedLock() {
        while (tracked_lock.test_and_set()) {
        }
    }
    ~TrackedLock() { tracked_lock.clear(); }
    TrackedLock(const TrackedLock&) = delete;
    TrackedLock& operator=(const TrackedLock&) = delete;
};

void* Track(void* block) {
    const TrackedLock lock;
    if (block != nullptr && tracked_count < kMostTracked) {
        tracked[tracked_count++] = block;
    }
    return block;
}

void Untrack(const void* block) {
    const TrackedLock lock;
    auto* const end = tracked.begin() + tracked_count;
    auto* const found = std::find(tracked.begin(), end, block);
    if (found != end) {
        *found = tracked[--tracked_count];
    }
}

}  // namespace

void ReleaseRuntimeMemory() {
    while (tracked_count > 0) {
        __real_free(tracked[--tracked_count]);
    }
}

void* __wrap_malloc(std::size_t size) {
    void* const block = __real_malloc(size);
    return block != nullptr ? Track(block) : TakeFromReserve(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (size != 0 && count > std::numeric_limits<std::size_t>::max() / size) {
        return nullptr;
    }
    void* const block = __wrap_malloc(count * size);
    return block != nullptr ? std::memset(block, 0, count * size) : nullptr;
}

void __wrap_free(void* block) {
    const std::size_t number = NumberOf(block);
    if (number == kBlocks) {
        Untrack(block);
        __real_free(block);
    } else {
        taken[number].clear();
    }
}

void* __wrap_realloc(void* block, std::size_t size) {
    if (block == nullptr) {
        return __wrap_malloc(size);
    }
    if (NumberOf(block) == kBlocks) {
        void* const moved = __real_realloc(block, size);
        if (moved != nullptr) {
            Untrack(block);
            Track(moved);
        }
        return moved;
    }
    void* const moved = __wrap_malloc(size);
    if (moved != nullptr) {
        std::memcpy(moved, block, std::min(size, kBlockBytes));
        __wrap_free(block);
    }
    return moved;
}

// The library's own memory.

void* operator new(std::size_t size) {
    if (void* const block = __real_malloc(std::max<std::size_t>(size, 1))) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    __real_free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    __real_free(block);
}

// The C++ runtime's own memory, and the library's.
//
// To throw an exception the runtime needs some memory of its own the first time: a record of the thread, a
// mutex. Where it gets none it ends the process, and the process is the agent's. And what it once has it
// never gives back, not even when the library is unloaded. So the linker sends every malloc() of this library
// through here. They are the runtime's alone: `new` has its own way, below, and fails as it should.

#include "runtime/runtime_memory.h"

#include "common/windows.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

// What the linker calls the two sides of a function that it sends through here.
extern "C" {
void* RealMalloc(std::size_t size) __asm__("__real_malloc");
void RealFree(void* block) __asm__("__real_free");
void* RealRealloc(void* block, std::size_t size) __asm__("__real_realloc");

void* RuntimeMalloc(std::size_t size) __asm__("__wrap_malloc");
void* RuntimeCalloc(std::size_t count, std::size_t size) __asm__("__wrap_calloc");
void* RuntimeRealloc(void* block, std::size_t size) __asm__("__wrap_realloc");
void RuntimeFree(void* block) __asm__("__wrap_free");
}

namespace {

constexpr std::size_t kBlockBytes = 1024;  // more than any record of the runtime
constexpr std::size_t kBlocks = 64;

struct alignas(std::max_align_t) Block {
    std::array<unsigned char, kBlockBytes> bytes;
};

constinit std::array<Block, kBlocks> reserve{};
constinit std::array<std::atomic_flag, kBlocks> taken{};

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

// The threads that did not call for the end are gone then, one of them perhaps with a lock in its hand.
constinit bool process_ends = false;

// The runtime's blocks that live: a few dozen at most. Like all that stands here they are ready before any
// code runs: the runtime allocates before it initialises what it is to initialise.
constexpr std::size_t kMostTracked = 1024;
constinit std::array<void*, kMostTracked> tracked{};
constinit std::size_t tracked_count = 0;
constinit std::atomic_flag tracked_lock;

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
    if (process_ends) {
        return block;
    }
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

// Most captures fit, and ask the system for nothing more.
constexpr std::size_t kFirstHeapBytes = std::size_t{1024} * 1024;

constinit HANDLE library_heap = nullptr;

}  // namespace

void CreateLibraryHeap() {
    library_heap = HeapCreate(0, kFirstHeapBytes, 0);
    if (library_heap == nullptr) {
        library_heap = GetProcessHeap();
    }
}

void LeaveMemoryToTheSystem() {
    process_ends = true;
    library_heap = nullptr;
}

void ReleaseMemory() {
    while (tracked_count > 0) {
        RealFree(tracked[--tracked_count]);
    }
    if (library_heap != GetProcessHeap()) {
        HeapDestroy(library_heap);
    }
    library_heap = nullptr;
}

void* RuntimeMalloc(std::size_t size) {
    void* const block = RealMalloc(size);
    return block != nullptr ? Track(block) : TakeFromReserve(size);
}

void* RuntimeCalloc(std::size_t count, std::size_t size) {
    if (size != 0 && count > std::numeric_limits<std::size_t>::max() / size) {
        return nullptr;
    }
    void* const block = RuntimeMalloc(count * size);
    return block != nullptr ? std::memset(block, 0, count * size) : nullptr;
}

void RuntimeFree(void* block) {
    if (process_ends) {
        return;
    }
    const std::size_t number = NumberOf(block);
    if (number == kBlocks) {
        Untrack(block);
        RealFree(block);
    } else {
        taken[number].clear();
    }
}

void* RuntimeRealloc(void* block, std::size_t size) {
    if (block == nullptr) {
        return RuntimeMalloc(size);
    }
    if (NumberOf(block) == kBlocks) {
        void* const moved = RealRealloc(block, size);
        if (moved != nullptr && !process_ends) {
            Untrack(block);
            Track(moved);
        }
        return moved;
    }
    void* const moved = RuntimeMalloc(size);
    if (moved != nullptr) {
        std::memcpy(moved, block, std::min(size, kBlockBytes));
        RuntimeFree(block);
    }
    return moved;
}

// The library's own memory: a heap of its own. Between the many small blocks of a capture and those of the
// document that the XML component builds, either would slow the other one down; and it goes back in one
// piece.

void* operator new(std::size_t size) {
    void* const block = library_heap != nullptr ? HeapAlloc(library_heap, 0, size) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    if (block != nullptr && library_heap != nullptr) {
        HeapFree(library_heap, 0, block);
    }
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}

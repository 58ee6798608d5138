#include "recordings/guarded_blocks.h"

#include "faults/guard_pages.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kSmallestGuarded = 128;

bool guarding = false;
bool inside = false;  // the list of the guarded blocks allocates too
std::size_t alive = 0;

// Compilers rely on the alignment of `new` for objects of such sizes. They end up to 8 bytes before the page.
std::size_t WithAlignment(std::size_t size) {
    constexpr std::size_t kObject = 8;
    constexpr std::size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
    return size % kObject == 0 ? (size + kAlignment - 1) / kAlignment * kAlignment : size;
}

void* Allocate(std::size_t size) noexcept {
    if (!guarding || inside || size < kSmallestGuarded) {
        return std::malloc(std::max<std::size_t>(size, 1));
    }
    inside = true;
    void* const block = faults::AllocateGuarded(WithAlignment(size));
    inside = false;
    alive += block == nullptr ? 0 : 1;
    return block;
}

void Free(void* block) noexcept {
    if (alive != 0 && !inside) {
        inside = true;
        const bool guarded = faults::FreeGuarded(block);
        inside = false;
        if (guarded) {
            --alive;
            return;
        }
    }
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    void* const block = Allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    Free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    Free(block);
}

namespace recordings {

GuardedBlocks::GuardedBlocks() {
    guarding = true;
}

GuardedBlocks::~GuardedBlocks() {
    guarding = false;
}

}  // namespace recordings

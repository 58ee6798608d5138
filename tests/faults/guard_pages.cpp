#include "faults/guard_pages.h"

#include "common/windows.h"

#include <cstdint>
#include <unordered_map>

namespace faults {

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kLargestAlignment = 16;

struct Block {
    void* pages = nullptr;
    std::size_t size = 0;
};

std::unordered_map<void*, Block>& Blocks() {
    static std::unordered_map<void*, Block> blocks;
    return blocks;
}

// The largest alignment that the elements of a block of this size can need. A type's size is a multiple of
// its alignment.
std::size_t AlignmentOf(std::size_t size) {
    std::size_t alignment = 1;
    while (alignment < kLargestAlignment && size % (alignment * 2) == 0) {
        alignment *= 2;
    }
    return alignment;
}

}  // namespace

void* AllocateGuarded(std::size_t size) noexcept {
    const std::size_t used = (size + kPage - 1) / kPage * kPage;
    auto* const pages = static_cast<unsigned char*>(
        VirtualAlloc(nullptr, used + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD former = 0;
    if (pages == nullptr || VirtualProtect(pages + used, kPage, PAGE_NOACCESS, &former) == FALSE) {
        return nullptr;
    }
    // A size that is a multiple of its alignment ends exactly at the guard page.
    static_assert(kPage % kLargestAlignment == 0);
    void* const block = pages + used - size;
    if (reinterpret_cast<std::uintptr_t>(block) % AlignmentOf(size) != 0) {
        return nullptr;
    }
    Blocks()[block] = {pages, size};
    return block;
}

bool FreeGuarded(void* block) noexcept {
    const auto found = Blocks().find(block);
    if (found == Blocks().end()) {
        return false;
    }
    VirtualFree(found->second.pages, 0, MEM_RELEASE);
    Blocks().erase(found);
    return true;
}

std::size_t GuardedSize(void* block) noexcept {
    const auto found = Blocks().find(block);
    return found == Blocks().end() ? 0 : found->second.size;
}

}  // namespace faults

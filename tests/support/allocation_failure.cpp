#include "support/allocation_failure.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> smallest_failing_now{kNever};
std::atomic<std::size_t> still_allowed{0};
std::atomic<std::size_t> hit_count{0};

// True if an allocation of this size must fail. Otherwise uses up one of the allowed allocations.
bool IsToFail(std::size_t size) {
    if (size < smallest_failing_now) {
        return false;
    }
    std::size_t left = still_allowed;
    while (left != 0 && !still_allowed.compare_exchange_weak(left, left - 1)) {
    }
    return left == 0;
}

}  // namespace

void* operator new(std::size_t size) {
    if (IsToFail(size)) {
        ++hit_count;
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace support {

AllocationFailure::AllocationFailure(std::size_t smallest_failing) : AllocationFailure(smallest_failing, 0) {}

AllocationFailure::AllocationFailure(std::size_t smallest_failing, std::size_t allowed) {
    hit_count = 0;
    still_allowed = allowed;
    smallest_failing_now = smallest_failing;
}

AllocationFailure AllocationFailure::After(std::size_t allowed) {
    return {0, allowed};
}

AllocationFailure::~AllocationFailure() {
    smallest_failing_now = kNever;
}

std::size_t AllocationFailure::hits() const noexcept {
    return hit_count;
}

}  // namespace support

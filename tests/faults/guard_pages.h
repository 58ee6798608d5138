#pragma once

#include <cstddef>

namespace faults {

// Allocates memory that ends at a guard page. Null if out of memory.
void* AllocateGuarded(std::size_t size) noexcept;

// Returns false if the block was not allocated by AllocateGuarded.
bool FreeGuarded(void* block) noexcept;

// The size that was requested for the block; 0 if it was not allocated by AllocateGuarded.
std::size_t GuardedSize(void* block) noexcept;

}  // namespace faults

#pragma once

#include <cstddef>

namespace faults {

// Memory whose last byte lies before a page that cannot be touched; null when there is none.
void* AllocateGuarded(std::size_t size) noexcept;

// False when the block is none of AllocateGuarded's.
bool FreeGuarded(void* block) noexcept;

// Bytes that the block was asked for; 0 when it is none of AllocateGuarded's.
std::size_t GuardedSize(void* block) noexcept;

}  // namespace faults

#pragma once

#include <cstdint>

// Reckoning with offsets and lengths that the system told: it wraps where the numbers lie, instead of
// overflowing.

// The exclusive end of a range of bytes.
inline std::int64_t EndOf(std::int64_t offset, std::int64_t length) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(offset) + static_cast<std::uint64_t>(length));
}

// The bytes from `start` to `end`.
inline std::int64_t LengthBetween(std::int64_t start, std::int64_t end) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(end) - static_cast<std::uint64_t>(start));
}

// The last byte before `end`.
inline std::int64_t LastBefore(std::int64_t end) {
    return LengthBetween(1, end);
}

// What is used of `total` when `unused` is left; 0 where more is left than there is, as under quotas.
inline std::uint64_t UsedOf(std::uint64_t total, std::uint64_t unused) {
    return total > unused ? total - unused : 0;
}

#pragma once

#include <cstdint>

// Arithmetic on untrusted offsets and lengths from the system. Wraps around instead of overflowing.

// The exclusive end of a byte range.
inline std::int64_t EndOf(std::int64_t offset, std::int64_t length) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(offset) + static_cast<std::uint64_t>(length));
}

// The number of bytes from `start` to `end`.
inline std::int64_t LengthBetween(std::int64_t start, std::int64_t end) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(end) - static_cast<std::uint64_t>(start));
}

// The last byte before `end`.
inline std::int64_t LastBefore(std::int64_t end) {
    return LengthBetween(1, end);
}

// The used part of `total`. Returns 0 if `unused` is larger than `total`, as can happen with quotas.
inline std::uint64_t UsedOf(std::uint64_t total, std::uint64_t unused) {
    return total > unused ? total - unused : 0;
}

#pragma once

#include <cstddef>

// The maximum length of a listing of volumes, directory entries or registry values. A longer listing is
// aborted: no real machine has so many entries.
inline constexpr std::size_t kMostListed = 200'000;

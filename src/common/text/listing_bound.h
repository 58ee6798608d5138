#pragma once

#include <cstddef>

// A listing of volumes, directory entries or registry values that never ends is given up here: no real
// machine has so many.
inline constexpr std::size_t kMostListed = 200'000;

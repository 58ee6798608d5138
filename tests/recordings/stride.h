#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace recordings {

// Every how manyth case runs: ORVANE_RECORDING_STRIDE or, without it, a sample.
inline std::size_t Stride(std::size_t sample) {
    const char* text = std::getenv("ORVANE_RECORDING_STRIDE");
    return text == nullptr ? sample : std::max(1UL, std::strtoul(text, nullptr, 10));
}

}  // namespace recordings

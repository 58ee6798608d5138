#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

using Work = std::function<void()>;

// Seconds that `work` takes, once.
double SecondsOf(const Work& work);

// The middle one of some figures, the upper of two; there must be one.
double MedianOf(std::vector<double> figures);

// How many times as long `measured` takes as `reference`: both are run `rounds` times in turn, after one
// round that does not count; the median of the rounds' ratios.
double RatioOf(const Work& measured, const Work& reference, std::size_t rounds);

}  // namespace bench

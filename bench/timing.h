#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

using Work = std::function<void()>;

// Runs `work` once and returns the time in seconds.
double SecondsOf(const Work& work);

// The median; of an even number of figures the upper middle one. There must be at least one figure.
double MedianOf(std::vector<double> figures);

// Runs a work once and returns its time in seconds.
using Stopwatch = double (*)(const Work& work);

// The time of `measured` divided by the time of `reference`. Runs both alternately, `rounds` times after one
// warm-up round, and returns the median of the ratios.
double RatioOf(const Work& measured, const Work& reference, std::size_t rounds,
               Stopwatch seconds_of = SecondsOf);

}  // namespace bench

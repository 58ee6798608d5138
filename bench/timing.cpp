#include "bench/timing.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace bench {

double SecondsOf(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double MedianOf(std::vector<double> figures) {
    const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    return *middle;
}

double RatioOf(const Work& measured, const Work& reference, std::size_t rounds, Stopwatch seconds_of) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round <= rounds; ++round) {
        // The one that runs second finds warmer caches, so the order alternates too.
        const bool reference_first = round % 2 == 0;
        const double before = reference_first ? seconds_of(reference) : 0;
        const double seconds = seconds_of(measured);
        const double after = reference_first ? 0 : seconds_of(reference);
        if (round > 0) {
            ratios.push_back(seconds / (before + after));
        }
    }
    return MedianOf(std::move(ratios));
}

}  // namespace bench

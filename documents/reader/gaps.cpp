#include "documents/reader/gaps.h"

#include "documents/model/lookup.h"

#include <algorithm>

namespace documents {

namespace {

// The ranges by offset, without overlaps and with at least a byte between them.
std::vector<Range> Merged(const std::vector<Partition>& partitions) {
    std::vector<Range> ranges;
    ranges.reserve(partitions.size());
    for (const Partition& partition : partitions) {
        ranges.push_back(partition.place);
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const Range& one, const Range& other) { return one.start < other.start; });
    std::vector<Range> merged;
    for (const Range& range : ranges) {
        if (!merged.empty() && range.start <= EndOf(merged.back())) {
            merged.back().length = std::max(EndOf(merged.back()), EndOf(range)) - merged.back().start;
        } else {
            merged.push_back(range);
        }
    }
    return merged;
}

}  // namespace

std::vector<Gap> FreeOf(std::vector<Gap> gaps, const std::vector<Partition>& partitions) {
    std::stable_sort(gaps.begin(), gaps.end(),
                     [](const Gap& one, const Gap& other) { return one.place.start < other.place.start; });
    const std::vector<Range> taken = Merged(partitions);
    std::vector<Gap> parts;
    std::uint64_t done = 0;  // everything before it is told
    for (const Gap& gap : gaps) {
        std::uint64_t start = std::max(gap.place.start, done);
        const std::uint64_t end = EndOf(gap.place);
        auto range =
            std::lower_bound(taken.begin(), taken.end(), start,
                             [](const Range& one, std::uint64_t offset) { return EndOf(one) <= offset; });
        while (start < end) {
            const std::uint64_t stop = range == taken.end() ? end : std::min(end, range->start);
            if (start < stop) {
                parts.push_back({{start, stop - start}, gap.in_extended});
            }
            start = range == taken.end() ? end : std::max(stop, EndOf(*range));
            if (range != taken.end()) {
                ++range;
            }
        }
        done = std::max(done, std::min(start, end));
    }
    return parts;
}

}  // namespace documents

#include "documents/report/map_widths.h"

#include <algorithm>
#include <numeric>

namespace documents {

bool FitsMap(std::size_t parts, double width) {
    return static_cast<double>(parts) * kLeastWidth <= width;
}

std::vector<double> MapWidths(const std::vector<std::uint64_t>& lengths, double width) {
    std::vector<std::size_t> by_length(lengths.size());
    std::iota(by_length.begin(), by_length.end(), std::size_t{0});
    std::sort(by_length.begin(), by_length.end(),
              [&](std::size_t one, std::size_t other) { return lengths[one] < lengths[other]; });

    // From the smallest on: each part that is raised leaves less for the larger ones, which may then need it
    // too.
    double length = std::accumulate(lengths.begin(), lengths.end(), 0.0);
    double room = width;
    std::vector<double> widths(lengths.size(), kLeastWidth);
    auto next = by_length.begin();
    while (next != by_length.end() && static_cast<double>(lengths[*next]) * room <= kLeastWidth * length) {
        length -= static_cast<double>(lengths[*next]);
        room -= kLeastWidth;
        ++next;
    }
    std::for_each(next, by_length.end(), [&](std::size_t index) {
        widths[index] = static_cast<double>(lengths[index]) / length * room;
    });
    return widths;
}

}  // namespace documents

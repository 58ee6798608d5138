#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace documents {

// No part of a map is narrower, however small it is. Pixels.
inline constexpr double kLeastWidth = 3;

// Whether each of the parts can have the least width.
bool FitsMap(std::size_t parts, double width);

// The widths of parts that lie side by side, in their order; together they are `width`, unless all lengths
// are 0. A width is the larger of kLeastWidth and the part's share of the length; what small parts gain is
// taken from the others in proportion to their lengths. Requires FitsMap(lengths.size(), width).
std::vector<double> MapWidths(const std::vector<std::uint64_t>& lengths, double width);

}  // namespace documents

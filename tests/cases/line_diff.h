#pragma once

#include <string>

namespace cases {

// What differs between two texts, to be read by people: the first differing lines, with the lines around them
// and their line numbers. "-" marks lines that only `expected` has, "+" those that only `actual` has. Empty
// for equal texts.
std::string Difference(const std::string& expected, const std::string& actual);

}  // namespace cases

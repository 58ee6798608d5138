#pragma once

#include <string>
#include <string_view>

namespace host {

// Lays out an element and everything in it, two blanks per level, and ends it with a line feed. No text
// changes: an element that holds text of its own stays as it is; blanks beside child elements are layout and
// give way. Throws std::invalid_argument for what is no single well-formed element.
std::string IndentXml(std::string_view xml);

}  // namespace host

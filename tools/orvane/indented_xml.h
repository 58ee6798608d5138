#pragma once

#include <string>
#include <string_view>

namespace host {

// Indents an element and its content by two spaces per level and appends a line feed. Text does not change:
// an element that contains text is copied unchanged; whitespace between child elements is replaced. Throws
// std::invalid_argument unless `xml` is a single well-formed element.
std::string IndentXml(std::string_view xml);

}  // namespace host

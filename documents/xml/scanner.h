#pragma once

#include <cstddef>
#include <string_view>

namespace documents {

// Checks that the text is well-formed XML of the kind that documents are, so that the parser gets nothing
// else and both builds refuse the same with the same words. Refused, beside what XML forbids: a document type
// declaration, references other than to characters and to the five entities of XML, attributes, CDATA
// sections, comments inside of a value, text between elements, names that are not ASCII, more than 64 levels,
// a value over 1 MiB, more than 100,000 elements in one, and more than one element in 20 bytes, which would
// need much memory.
//
// Returns the offset of the root element. Throws ReadError.
std::size_t RequireWellFormed(std::string_view xml);

}  // namespace documents

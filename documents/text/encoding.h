#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace documents {

// Larger files are refused.
inline constexpr std::size_t kLargestDocument = std::size_t{256} << 20U;

// The text of a file, in UTF-8 without a byte order mark. Its encoding is said by, in this order: a byte
// order mark (UTF-8, UTF-16), the XML declaration, `code_page` (one of CodePages()); else it is UTF-8. Throws
// ReadError for bytes that the encoding does not have.
std::string DecodeText(std::string bytes, const std::optional<unsigned>& code_page);

// The text of a file that is no document: decoded if it begins with a byte order mark, as Windows PowerShell
// writes UTF-16; else its bytes as they are. Throws ReadError.
std::string DecodeMarkedText(std::string bytes);

}  // namespace documents

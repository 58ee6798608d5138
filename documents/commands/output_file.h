#pragma once

#include <string>

namespace documents {

// Throws Trouble if the file exists.
void RequireFree(const std::string& file);

// Writes a file whole or not at all: under another name in the same folder first. Throws Trouble; also if the
// file exists, unless `force`.
void WriteWholeFile(const std::string& file, const std::string& bytes, bool force);

}  // namespace documents

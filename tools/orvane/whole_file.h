#pragma once

#include <filesystem>
#include <string>

namespace host {

enum class Existing { kKept, kReplaced };

// Throws std::runtime_error if the file exists and is to be kept.
void RequireFree(const std::filesystem::path& file, Existing existing);

// Writes the text into a new file in the same folder and moves it to its place when it is whole, so that a
// failure leaves what was there before. Throws std::runtime_error.
void WriteWholeFile(const std::filesystem::path& file, const std::string& text, Existing existing);

}  // namespace host

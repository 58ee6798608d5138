#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cases {

// Compares what the library makes of the machine with the file in expected/. What differs, to be read by
// people; empty if nothing does. A missing file differs, and so does a document beside a refusal.
std::string DifferenceOf(const std::filesystem::path& folder, const std::string& subject);

// The files and folders of a case that belong to nothing.
std::vector<std::string> Strays(const std::filesystem::path& folder);

// Writes all files of expected/ anew, and removes those that no longer belong there. Returns a line for every
// file that changed. The case must have a machine.json and a README.md that is not empty: what is special
// about the machine is written before what the library makes of it. Throws std::runtime_error.
std::vector<std::string> WriteExpectedFiles(const std::filesystem::path& folder);

}  // namespace cases

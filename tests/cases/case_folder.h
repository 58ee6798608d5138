#pragma once

#include <filesystem>
#include <string>
#include <vector>

// A described machine with the results that belong to it: a folder of examples/machines.
namespace cases {

inline constexpr const char* kMachineFile = "machine.json";
inline constexpr const char* kReadmeFile = "README.md";
inline constexpr const char* kSelectedFile = "selected.txt";
inline constexpr const char* kExceptionsFile = "exceptions.txt";  // read by the tests of the description
inline constexpr const char* kExpectedFolder = "expected";

// The folders inside `examples`, in the order of their names. What is no folder is left out.
std::vector<std::filesystem::path> FoldersOf(const std::filesystem::path& examples);

// Throws std::runtime_error if the file cannot be read.
std::string ReadText(const std::filesystem::path& file);

// The volumes that the agent selects on this machine: the lines of selected.txt (UTF-8), without empty ones.
// None without the file.
std::vector<std::wstring> SelectedVolumes(const std::filesystem::path& folder);

}  // namespace cases

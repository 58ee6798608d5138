#pragma once

#include <filesystem>

namespace host {

// The file of this program.
std::filesystem::path ProgramPath();

}  // namespace host

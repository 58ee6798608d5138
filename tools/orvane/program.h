#pragma once

#include "documents/commands/command.h"

#include <string>
#include <vector>

namespace host {

// Runs the program and returns its exit code. `arguments` lacks the program name. Throws nothing.
int Run(const std::vector<std::wstring>& arguments, const documents::Terminal& terminal);

}  // namespace host

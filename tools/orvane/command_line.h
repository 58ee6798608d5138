#pragma once

#include "tools/orvane/unique_handle.h"

#include <string>
#include <vector>

namespace host {

// Throws std::runtime_error with `what` and the last error, unless `done`.
void Require(bool done, const char* what);

// The command line that the C runtime of the started program splits into these arguments.
std::wstring CommandLine(const std::vector<std::wstring>& command);

// Starts a program with inheritable standard handles; a null one is the standard handle of this process.
// Throws std::runtime_error.
void StartProcess(const std::vector<std::wstring>& command, HANDLE input, HANDLE output, HANDLE errors,
                  Handle& process);

}  // namespace host

#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace host {

// The whole program, but for the process around it: arguments without the program's name, the two standard
// streams (binary, UTF-8), whether the first shows colours; the exit code. Throws nothing.
int Run(const std::vector<std::wstring>& arguments, std::ostream& out, std::ostream& errors, bool colour);

}  // namespace host

#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace host {

// Runs the program and returns its exit code. `arguments` lacks the program name, `out` and `errors` are the
// standard streams (binary, UTF-8), and `colour` is whether `out` shows colours. Throws nothing.
int Run(const std::vector<std::wstring>& arguments, std::ostream& out, std::ostream& errors, bool colour);

}  // namespace host

#pragma once

#include "tools/orvane/options.h"

#include <ostream>

namespace host {

// `orvane check`: writes the report to `out`, with terminal colours if `colour`. If the check failed, writes
// the library's errors to `errors`. Returns the exit code. Throws LibraryError, machine::DescriptionError and
// other std::exceptions.
int Check(const CheckOptions& options, std::ostream& out, std::ostream& errors, bool colour);

}  // namespace host

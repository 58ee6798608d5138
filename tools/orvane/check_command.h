#pragma once

#include "tools/orvane/options.h"

#include <ostream>

namespace host {

// `orvane check`: writes the report to `out`, with a terminal's colours when `colour`, and what the library
// complained about to `errors` where the check failed. Returns the exit code. Throws LibraryError,
// machine::DescriptionError and other std::exceptions.
int Check(const CheckOptions& options, std::ostream& out, std::ostream& errors, bool colour);

}  // namespace host

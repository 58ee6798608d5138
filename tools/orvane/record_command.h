#pragma once

#include "tools/orvane/options.h"

#include <ostream>

namespace host {

// `orvane record`: observes a machine and writes what it answered. Messages and, if `errors` is a terminal,
// the progress go to `errors`. Returns the exit code. Throws machine::DescriptionError, UsageError and other
// std::exceptions; then nothing was written.
int Record(const RecordOptions& options, std::ostream& errors);

}  // namespace host

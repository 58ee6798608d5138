#pragma once

#include "tools/orvane/options.h"

#include <ostream>

namespace host {

// `orvane record`: observes a machine, describes it, and proves the description. The findings of the proof go
// to `out`, messages and, if standard error is a terminal, the progress to `errors`. Returns the exit code.
// Throws machine::DescriptionError, UsageError and other std::exceptions; then nothing was written.
int Record(const RecordOptions& options, std::ostream& out, std::ostream& errors);

// `orvane prove`: describes the machine of an observations file and compares its answers. Throws as Record.
int Prove(const ProveOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace host

#pragma once

#include "tools/orvane/verdicts.h"

#include <string>

namespace host {

// The report as human-readable tables in UTF-8, with terminal colours if `colour`.
std::string TableOf(const CheckReport& report, bool colour);

// The report as one JSON object in UTF-8.
std::string JsonOf(const CheckReport& report);

}  // namespace host

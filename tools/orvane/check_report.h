#pragma once

#include "tools/orvane/verdicts.h"

#include <string>

namespace host {

// The report as tables for people, UTF-8; with the colours of a terminal when `colour`.
std::string TableOf(const CheckReport& report, bool colour);

// The report as one JSON object for programs, UTF-8.
std::string JsonOf(const CheckReport& report);

}  // namespace host

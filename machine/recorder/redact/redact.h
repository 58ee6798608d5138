#pragma once

#include "machine/recorder/observe/observations.h"
#include "machine/recorder/redact/replacements.h"

namespace recorder {

// The observations without what tells about people and organisations (redaction_table.h), and marked so.
// A description that is written from them is redacted too. `replacements` is new; afterwards it holds what
// was replaced. Throws std::logic_error for a call without a row in the table.
Observations Redact(const Observations& observations, Replacements& replacements);

}  // namespace recorder

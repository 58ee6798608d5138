#pragma once

#include "machine/recorder/observe/observations.h"
#include "machine/recorder/prove/proof.h"
#include "machine/recorder/redact/replacements.h"

#include <string>

namespace host {

// Throws std::runtime_error, which names values and places, if the observations or the text of their
// description still hold a value that was to be replaced.
void RequireNoLeak(const recorder::Replacements& replacements, const recorder::Observations& observations,
                   const std::string& description);

// Replaces in a line of the library's output what the recording replaces. A line that still holds a private
// value is left out.
recorder::ShownLine WithoutPrivateValues(const recorder::Replacements& replacements);

// "machine.json holds 12 names and 30 ids; --redact replaces them"
std::string PrivateValuesInWords(const std::string& file, const recorder::Replacements& replacements);

}  // namespace host

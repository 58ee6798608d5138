#pragma once

#include "machine/recorder/redact/replacements.h"

#include <string>

namespace recorder {

// What was replaced by what, as JSON (UTF-8): lists `texts`, `guids` and `ids` of objects with `from` and
// `to`.
std::string MapText(const Replacements& replacements);

}  // namespace recorder

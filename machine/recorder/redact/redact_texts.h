#pragma once

#include "machine/recorder/redact/redaction_table.h"
#include "machine/recorder/redact/replacements.h"

#include <string>

namespace recorder {

// A text of a kind of content with its private parts replaced, or noted (replacements.h).
std::wstring RedactedText(Content content, const std::wstring& text, Replacements& replacements);

}  // namespace recorder

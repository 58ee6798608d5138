#pragma once

#include "machine/recorder/observe/question.h"
#include "machine/recorder/redact/redaction_table.h"
#include "machine/recorder/redact/replacements.h"

namespace recorder {

// The bytes of an answer with their private values replaced, or noted (replacements.h). Of a value that does
// not fit the bytes as a whole, zeros are left.
Bytes RedactedBytes(Form form, const Bytes& bytes, Replacements& replacements);

// UTF-16 texts, each with its terminator or at the end.
Bytes RedactedTexts(Content content, const Bytes& bytes, Replacements& replacements);

}  // namespace recorder

#pragma once

#include "machine/recorder/redact/replacements.h"
#include "machine/recorder/redact/searched_texts.h"

#include <string>
#include <vector>

namespace recorder {

struct Leak {
    std::string value;  // that was to be replaced
    std::string place;
};

// The originals that a text still holds, whatever their case: texts as 8-bit and UTF-16 text and in
// hexadecimal; GUIDs and ids as text and as bytes. A text of six units or more that does not consist of
// everyday words (everyday_words.h) is found anywhere, any other one as a whole and as a part of a path.
std::vector<Leak> FindLeaks(const Replacements& replacements, const std::vector<SearchedText>& texts);

}  // namespace recorder

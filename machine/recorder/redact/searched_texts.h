#pragma once

#include "machine/recorder/observe/observations.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace recorder {

// A value that is searched for private texts, as a text with folded units (letters.h).
struct SearchedText {
    std::wstring text;
    std::string place;      // "answer 12 (GetDriveTypeW), object", or a JSON pointer
    bool word = false;      // numbers, and words that only the system chooses
    bool readable = false;  // a text; else an interpretation of bytes
};

// All values of observations and of a description. Bytes come as UTF-16 from the first and from the second
// byte on, and as one unit a byte.
std::vector<SearchedText> SearchedTexts(const Observations& observations);
std::vector<SearchedText> SearchedTexts(const nlohmann::ordered_json& description);

}  // namespace recorder

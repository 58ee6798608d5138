#pragma once

#include "machine/recorder/observe/observations.h"

#include <string>
#include <string_view>
#include <vector>

namespace recorder {

// The texts of a list in which a terminator follows each text, and another one the last.
std::vector<std::wstring> TextsOf(const Bytes& bytes);

// The names of the parts of the best answer; none if it was not asked or failed. A listing that broke off
// gives the names before.
std::vector<std::wstring> ListedNames(const Observations& observations, std::string_view call,
                                      std::wstring_view object);

// The texts of the best answer; none if it was not asked or failed.
std::vector<std::wstring> AnsweredTexts(const Observations& observations, std::string_view call,
                                        std::wstring_view object);

}  // namespace recorder

#pragma once

#include <span>
#include <string_view>

namespace host {

// A reason why a disk or volume cannot be backed up. docs/reasons.md has the same codes, with what to do.
struct ReasonCode {
    std::string_view code;       // "R003"; never reused
    std::string_view beginning;  // of the library's sentence, without leading blanks
    std::string_view part;       // that it also has; empty: none
    std::string_view title;
};

// All codes, in their order. The last one, R000, is that of every other sentence.
std::span<const ReasonCode> ReasonCodes();

// The code of a sentence of the library.
std::string_view CodeOf(std::string_view sentence);

}  // namespace host

#pragma once

#include <random>
#include <string>
#include <string_view>

// Texts of the same form as others: ASCII letters and digits stay such, other characters stay outside ASCII,
// punctuation and the number of UTF-16 units stay.
namespace recorder {

// Upper case, unit by unit; a unit outside ASCII stays outside it.
wchar_t FoldedUnit(wchar_t unit);
std::wstring FoldedUnits(std::wstring_view text);

// Whether a text has nothing to hide: one ASCII letter or digit, at most three digits, or no letter and no
// digit but 0.
bool TellsNothing(std::wstring_view text);

// The units from which a replacement of a unit is taken, `count` from `first` on; none if it stays. A unit in
// lower case is replaced by one in lower case.
struct UnitRange {
    wchar_t first = 0;
    unsigned count = 0;
};
UnitRange ReplacementsOf(std::wstring_view folded, std::size_t position);

// A random text of the form of `folded`, in upper case.
std::wstring MadeText(std::wstring_view folded, std::mt19937& random);

// `made`, with the letters in lower case that are in lower case in `original`.
std::wstring WithCaseOf(std::wstring_view original, std::wstring_view made);

}  // namespace recorder

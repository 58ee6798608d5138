#pragma once

#include <string>

// How many conversions EscapeUnsafeConversions leaves in force.
inline constexpr int kSafeConversions = 4;

// A text that is used as a format without the arguments to go with it: leaves "%%" and the first kSafeConversions
// integer conversions in force and escapes every other percent sign, so that formatting reads no stray pointer.
std::wstring EscapeUnsafeConversions(const wchar_t* text);

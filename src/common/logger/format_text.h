#pragma once

#include <array>
#include <cstddef>

// The number of conversions that EscapeUnsafeConversions leaves active.
inline constexpr int kSafeConversions = 4;

// Enough space for the format of a whole message. A truncated message has 254 characters; outside the
// conversions, each needs at most two characters in the format.
inline constexpr std::size_t kFormatCharacters = 640;
using FormatBuffer = std::array<wchar_t, kFormatCharacters>;

// Makes a text safe to use as a format without matching arguments. Keeps "%%" and the first kSafeConversions
// integer and character conversions, and escapes every other percent sign, so that formatting never reads an
// invalid pointer. Truncates the result to the size of `escaped`. Does not allocate.
void EscapeUnsafeConversions(const wchar_t* text, FormatBuffer& escaped);

#pragma once

#include <array>
#include <cstddef>

// How many conversions EscapeUnsafeConversions leaves in force.
inline constexpr int kSafeConversions = 4;

// Room for a format of which a whole message can be made: a cut message has 254 characters, of which each
// takes at most two of the format but for the conversions.
inline constexpr std::size_t kFormatCharacters = 640;
using FormatBuffer = std::array<wchar_t, kFormatCharacters>;

// Makes a text that is used as a format without the arguments to go with it harmless: leaves "%%" and the
// first kSafeConversions integer and character conversions in force and escapes every other percent sign, so
// that formatting reads no stray pointer. What does not fit into `escaped` is cut off. Allocates nothing.
void EscapeUnsafeConversions(const wchar_t* text, FormatBuffer& escaped);

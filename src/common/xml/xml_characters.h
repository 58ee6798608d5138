#pragma once

#include <cstddef>
#include <span>
#include <string_view>

// The number of characters at the beginning of `text` that XML surely can contain: all before the first
// control character or surrogate, or the first character behind the surrogates.
std::size_t PlainLength(std::wstring_view text);

// Replaces every character that XML cannot contain by U+FFFD, so the length does not change: the control
// characters except tab, line feed and carriage return; U+FFFE and U+FFFF; a surrogate that is not half of a
// pair.
void ReplaceForbiddenCharacters(std::span<wchar_t> text);

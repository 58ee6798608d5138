#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace documents {

// The character at the beginning of `text`, and the number of its bytes. A length of 0 means that the bytes
// are not UTF-8 (overlong forms, surrogates and numbers over U+10FFFF included) or that `text` is empty.
struct Utf8Character {
    char32_t code = 0;
    std::size_t length = 0;
};
Utf8Character FirstCharacter(std::string_view text);

// `code` must be a Unicode scalar value.
void AppendUtf8(std::string& text, char32_t code);

// Converts UTF-16; half of a surrogate pair becomes U+FFFD.
std::string FromUtf16(std::u16string_view text);

// Whether XML 1.0 allows the character.
bool IsXmlCharacter(char32_t code);

// "line 3, column 7" of the byte at `offset`; columns count characters. `text` must be UTF-8 up to there.
std::string PlaceOf(std::string_view text, std::size_t offset);

// The text with every control and every bidirectional control character as "\u202E", so that it cannot change
// what a terminal shows.
std::string Escaped(std::string_view text);

// The same for a JSON text: such characters can only be inside of its strings, where this form means the same
// character. Line feeds outside of the strings stay.
std::string EscapedJson(std::string_view json);

}  // namespace documents

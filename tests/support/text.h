#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace support {

// Wide text from the system's ANSI code page.
std::wstring Wide(std::string_view ansi);

// Text in the system's ANSI code page; characters that it lacks become its default character.
std::string Ansi(std::wstring_view wide);

// UTF-8, for messages and for comparing with files.
std::string Utf8(std::wstring_view wide);
std::wstring WideFromUtf8(std::string_view utf8);

// The entries, each with its end, and the empty entry that ends the list: {L"a", L"b"} is "a\0b\0\0".
std::wstring MultiString(std::initializer_list<std::wstring_view> entries);

}  // namespace support

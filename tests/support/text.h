#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace support {

// Converts from the system's ANSI code page.
std::wstring Wide(std::string_view ansi);

// Converts to the system's ANSI code page. Characters that it lacks become its default character.
std::string Ansi(std::wstring_view wide);

// UTF-8, for messages and for comparison with files.
std::string Utf8(std::wstring_view wide);
std::wstring WideFromUtf8(std::string_view utf8);

// Joins the entries as a multi-string: {L"a", L"b"} becomes "a\0b\0\0".
std::wstring MultiString(std::initializer_list<std::wstring_view> entries);

}  // namespace support

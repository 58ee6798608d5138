#pragma once

#include <string>
#include <string_view>

namespace host {

// Converts text in the system's ANSI code page to UTF-8. Throws std::runtime_error if the system cannot
// convert it.
std::string FromAnsi(std::string_view text);

// Converts text in the C runtime's current locale, as the library's log uses it, to UTF-8. Invalid bytes
// become question marks.
std::string FromLocale(const char* text);

}  // namespace host

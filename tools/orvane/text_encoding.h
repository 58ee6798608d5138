#pragma once

#include <string>
#include <string_view>

namespace host {

// A text in the system's ANSI code page as UTF-8. Throws std::runtime_error where the system cannot convert
// it.
std::string FromAnsi(std::string_view text);

// A text in the C runtime's current locale, as the library's log comes, as UTF-8; bytes that mean nothing
// there become question marks.
std::string FromLocale(const char* text);

}  // namespace host

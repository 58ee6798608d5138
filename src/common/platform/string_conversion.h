#pragma once

#include <string>
#include <string_view>

// Converts `text` to the system's ANSI code page. Returns an empty text if `text` is empty, or, after logging
// one line at level 2, if it cannot be converted.
std::string ConvertWStrToStr(std::wstring_view text);

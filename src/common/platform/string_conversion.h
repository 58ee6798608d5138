#pragma once

#include <string>
#include <string_view>

// `text` in the system's ANSI code page. Empty when `text` is empty or cannot be converted (one level 2
// line).
std::string ConvertWStrToStr(std::wstring_view text);

#pragma once

#include <cwctype>
#include <string>

// The text for comparisons without regard to case.
inline std::wstring CaseFolded(std::wstring text) {
    for (wchar_t& character : text) {
        character = static_cast<wchar_t>(std::towlower(character));
    }
    return text;
}

#pragma once

#include <algorithm>
#include <cwctype>
#include <string>
#include <string_view>

// Comparisons without regard to case.

inline wchar_t CaseFolded(wchar_t character) {
    constexpr wchar_t kAscii = 0x7F;
    if (character > kAscii) {
        return static_cast<wchar_t>(std::towlower(character));
    }
    // Names are ASCII as a rule, for which nobody needs to be asked.
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

// The text for comparisons without regard to case.
inline std::wstring CaseFolded(std::wstring text) {
    for (wchar_t& character : text) {
        character = CaseFolded(character);
    }
    return text;
}

// Most characters that meet are the same: folding is for the others.
inline bool EqualFolded(wchar_t a, wchar_t b) {
    return a == b || CaseFolded(a) == CaseFolded(b);
}

inline bool EqualFolded(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](wchar_t x, wchar_t y) { return EqualFolded(x, y); });
}

inline bool StartsWithFolded(std::wstring_view text, std::wstring_view prefix) {
    return EqualFolded(text.substr(0, prefix.size()), prefix);
}

inline bool LessFolded(std::wstring_view a, std::wstring_view b) {
    const auto equal = [](wchar_t x, wchar_t y) { return EqualFolded(x, y); };
    const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), equal);
    return y != b.end() && (x == a.end() || CaseFolded(*x) < CaseFolded(*y));
}

#pragma once

#include "common/windows.h"

#include <string_view>

// Case-insensitive ordinal comparisons, as the system compares its own names.

// Returns CSTR_LESS_THAN, CSTR_EQUAL or CSTR_GREATER_THAN.
inline int CompareFolded(std::wstring_view a, std::wstring_view b) {
    // An empty view may hold a null pointer, which the system function does not accept.
    const auto address = [](std::wstring_view text) { return text.empty() ? L"" : text.data(); };
    return CompareStringOrdinal(address(a), static_cast<int>(a.size()), address(b),
                                static_cast<int>(b.size()), TRUE);
}

inline bool EqualFolded(std::wstring_view a, std::wstring_view b) {
    return CompareFolded(a, b) == CSTR_EQUAL;
}

inline bool StartsWithFolded(std::wstring_view text, std::wstring_view prefix) {
    return EqualFolded(text.substr(0, prefix.size()), prefix);
}

// A case-insensitive order for sorted containers and searches.
struct LessFolded {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const {
        return CompareFolded(a, b) == CSTR_LESS_THAN;
    }
};

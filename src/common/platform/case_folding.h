#pragma once

#include "common/windows.h"

#include <string_view>

// Comparisons without regard to case, in the system's ordinal order: as it compares its own names.

// CSTR_LESS_THAN, CSTR_EQUAL or CSTR_GREATER_THAN.
inline int CompareFolded(std::wstring_view a, std::wstring_view b) {
    // A view of nothing has no address, which the system's function asks for.
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

// An order for sorted containers and searches.
struct LessFolded {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const {
        return CompareFolded(a, b) == CSTR_LESS_THAN;
    }
};

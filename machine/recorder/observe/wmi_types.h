#pragma once

#include "common/windows.h"

#include <wtypes.h>

#include <cstddef>
#include <iterator>
#include <string>

namespace recorder {

// A type of property and its name in the observations. `element_bytes` is the size of an element of an array
// of numbers, 0 for all other types.
struct WmiType {
    VARTYPE type = VT_EMPTY;
    const wchar_t* name = nullptr;
    std::size_t element_bytes = 0;
};

inline constexpr WmiType kWmiTypes[] = {
    {VT_EMPTY, L"VT_EMPTY"},
    {VT_NULL, L"VT_NULL"},
    {VT_BOOL, L"VT_BOOL"},
    {VT_I1, L"VT_I1"},
    {VT_UI1, L"VT_UI1"},
    {VT_I2, L"VT_I2"},
    {VT_UI2, L"VT_UI2"},
    {VT_I4, L"VT_I4"},
    {VT_UI4, L"VT_UI4"},
    {VT_INT, L"VT_INT"},
    {VT_UINT, L"VT_UINT"},
    {VT_I8, L"VT_I8"},
    {VT_UI8, L"VT_UI8"},
    {VT_R4, L"VT_R4"},
    {VT_R8, L"VT_R8"},
    {VT_BSTR, L"VT_BSTR"},
    {VT_ARRAY | VT_BSTR, L"VT_ARRAY|VT_BSTR"},
    {VT_ARRAY | VT_UI1, L"VT_ARRAY|VT_UI1", 1},
    {VT_ARRAY | VT_I2, L"VT_ARRAY|VT_I2", 2},
    {VT_ARRAY | VT_I4, L"VT_ARRAY|VT_I4", 4},
};

// Null for a type that is not in the table; the observations then hold its number.
inline const WmiType* FindWmiType(VARTYPE type) {
    for (const WmiType& known : kWmiTypes) {
        if (known.type == type) {
            return &known;
        }
    }
    return nullptr;
}

inline const WmiType* FindWmiType(const std::wstring& name) {
    for (const WmiType& known : kWmiTypes) {
        if (known.name == name) {
            return &known;
        }
    }
    return nullptr;
}

}  // namespace recorder

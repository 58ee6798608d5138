#pragma once

#include "common/windows.h"

#include <oleauto.h>

#include <memory>
#include <string_view>

struct BstrDeleter {
    void operator()(wchar_t* text) const { SysFreeString(text); }
};

// Sole ownership of a BSTR. Unlike the compiler's own wrapper it needs no memory to take one over.
using UniqueBstr = std::unique_ptr<wchar_t, BstrDeleter>;

// A view of the text, which must outlive it; a null one is empty.
inline std::wstring_view TextOf(wchar_t* bstr) {
    return {bstr, SysStringLen(bstr)};
}

inline std::wstring_view TextOf(const UniqueBstr& text) {
    return TextOf(text.get());
}

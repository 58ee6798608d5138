#pragma once

#include "common/windows.h"

#include <oleauto.h>

#include <memory>
#include <string_view>

struct BstrDeleter {
    void operator()(wchar_t* text) const { SysFreeString(text); }
};

// Unique ownership of a BSTR. Unlike the compiler's own wrapper, it allocates nothing to take ownership.
using UniqueBstr = std::unique_ptr<wchar_t, BstrDeleter>;

// A view of the text, which must outlive the view. A null BSTR is an empty view.
inline std::wstring_view TextOf(wchar_t* bstr) {
    return {bstr, SysStringLen(bstr)};
}

inline std::wstring_view TextOf(const UniqueBstr& text) {
    return TextOf(text.get());
}

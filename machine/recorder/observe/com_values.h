#pragma once

#include "common/windows.h"

#include <oleauto.h>
#include <unknwn.h>

#include <memory>
#include <string>
#include <string_view>

// Owners of what COM returns.
namespace recorder {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using Pointer = std::unique_ptr<Interface, Releaser>;

struct TextFreer {
    void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using ComText = std::unique_ptr<OLECHAR, TextFreer>;

inline ComText ComTextOf(std::wstring_view text) {
    return ComText(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
}

inline std::wstring_view ViewOf(BSTR text) {
    return {text == nullptr ? L"" : text, SysStringLen(text)};
}

}  // namespace recorder

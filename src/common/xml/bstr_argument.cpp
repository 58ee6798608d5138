#include "common/xml/bstr_argument.h"

#include "common/xml/xml_characters.h"

#include <comdef.h>

#include <algorithm>
#include <type_traits>

template <class Letter>
void BstrArgument::Assign(std::basic_string_view<Letter> text) {
    static_assert(offsetof(Short, letters) == offsetof(Short, bytes) + sizeof(Short::bytes));
    if (text.size() <= kShort) {
        short_.bytes = static_cast<UINT>(text.size() * sizeof(wchar_t));
    } else {
        long_.reset(SysAllocStringLen(nullptr, static_cast<UINT>(text.size())));
        if (!long_) {
            throw _com_error(E_OUTOFMEMORY);
        }
    }
    std::transform(text.begin(), text.end(), get(), [](Letter letter) {
        return static_cast<wchar_t>(static_cast<std::make_unsigned_t<Letter>>(letter));
    });
}

BstrArgument::BstrArgument(std::wstring_view text) {
    // Most texts are plain and need only this scan.
    const std::size_t plain = PlainLength(text);
    Assign(text.substr(0, text.find(L'\0', plain)));
    if (plain < text.size()) {
        ReplaceForbiddenCharacters({get(), SysStringLen(get())});
    }
}

BstrArgument::BstrArgument(const char* text) {
    Assign(std::string_view(text));
}

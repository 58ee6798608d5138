#include "common/platform/multi_string.h"

#include <cwchar>

std::vector<std::wstring> SplitMultiString(const wchar_t* text, std::size_t count) {
    // No end pointer: a count may be larger than the address space behind the text.
    std::vector<std::wstring> entries;
    while (count > 0 && *text != L'\0') {
        const std::size_t length = wcsnlen(text, count);
        if (length == count) {
            break;
        }
        entries.emplace_back(text, length);
        text += length + 1;
        count -= length + 1;
    }
    return entries;
}

#include "common/platform/multi_string.h"

#include <algorithm>

std::vector<std::wstring> SplitMultiString(const wchar_t* text, std::size_t count) {
    std::vector<std::wstring> entries;
    const wchar_t* const end = text + count;
    for (const wchar_t* entry = text; entry != end && *entry != L'\0';) {
        const wchar_t* const terminator = std::find(entry, end, L'\0');
        if (terminator == end) {
            break;
        }
        entries.emplace_back(entry, terminator);
        entry = terminator + 1;
    }
    return entries;
}

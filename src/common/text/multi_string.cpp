#include "common/text/multi_string.h"

#include <algorithm>
#include <cwchar>
#include <string_view>

namespace {

// Calls `take` for each entry. Does not compute an end pointer: `count` may exceed the address space after
// the text.
template <class Take>
void ForEachEntry(const wchar_t* text, std::size_t count, CutEntry cut, Take&& take) {
    while (count > 0 && *text != L'\0') {
        const std::size_t length = wcsnlen(text, count);
        if (length < count || cut == CutEntry::kTaken) {
            take(std::wstring_view(text, length));
        }
        const std::size_t passed = std::min(length + 1, count);
        text += passed;
        count -= passed;
    }
}

}  // namespace

std::vector<std::wstring> SplitMultiString(const wchar_t* text, std::size_t count, CutEntry cut) {
    std::size_t number = 0;
    ForEachEntry(text, count, cut, [&](std::wstring_view) { ++number; });
    std::vector<std::wstring> entries;
    entries.reserve(number);
    ForEachEntry(text, count, cut, [&](std::wstring_view entry) { entries.emplace_back(entry); });
    return entries;
}

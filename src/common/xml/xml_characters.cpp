#include "common/xml/xml_characters.h"

#include <algorithm>

namespace {

constexpr wchar_t kReplacement = 0xFFFD;
constexpr wchar_t kFirstPrintable = 0x20;
constexpr wchar_t kFirstSurrogate = 0xD800;
constexpr wchar_t kFirstLowSurrogate = 0xDC00;
constexpr wchar_t kLastSurrogate = 0xDFFF;

bool IsPlain(wchar_t unit) {
    return unit >= kFirstPrintable && unit < kFirstSurrogate;
}

bool IsHighSurrogate(wchar_t unit) {
    return unit >= kFirstSurrogate && unit < kFirstLowSurrogate;
}

bool IsLowSurrogate(wchar_t unit) {
    return unit >= kFirstLowSurrogate && unit <= kLastSurrogate;
}

// Whether XML can contain the unit by itself.
bool IsAllowed(wchar_t unit) {
    return IsPlain(unit) || (unit > kLastSurrogate && unit <= kReplacement) || unit == L'\t' ||
           unit == L'\n' || unit == L'\r';
}

}  // namespace

std::size_t PlainLength(std::wstring_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsPlain) - text.begin());
}

void ReplaceForbiddenCharacters(std::span<wchar_t> text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool pair = IsHighSurrogate(text[at]) && at + 1 < text.size() && IsLowSurrogate(text[at + 1]);
        if (pair) {
            ++at;
        } else if (!IsAllowed(text[at])) {
            text[at] = kReplacement;
        }
    }
}

#include "common/logger/format_text.h"

#include <cstddef>
#include <cwchar>
#include <string_view>

namespace {

// The maximum number of digits of a width or precision; no legitimate format has more.
constexpr std::size_t kLongestNumber = 3;

constexpr std::wstring_view kSafeTypes = L"diouxXcCp";

std::size_t SkipAny(std::wstring_view text, std::size_t at, std::wstring_view set) {
    const std::size_t next = text.find_first_not_of(set, at);
    return next == std::wstring_view::npos ? text.size() : next;
}

// The position after a number, or npos if the number has more than kLongestNumber digits.
std::size_t SkipNumber(std::wstring_view text, std::size_t at) {
    const std::size_t next = SkipAny(text, at, L"0123456789");
    return next - at > kLongestNumber ? std::wstring_view::npos : next;
}

std::size_t SkipSize(std::wstring_view text, std::size_t at) {
    for (const std::wstring_view size : {L"I64", L"I32", L"ll", L"I", L"l", L"h"}) {
        if (text.substr(at, size.size()) == size) {
            return at + size.size();
        }
    }
    return at;
}

// The length of the number or character conversion that starts with the percent sign at `at`; 0 if it is no
// such conversion.
std::size_t SafeConversionLength(std::wstring_view text, std::size_t at) {
    std::size_t next = SkipNumber(text, SkipAny(text, at + 1, L"-+ #"));
    if (next != std::wstring_view::npos && text.substr(next, 1) == L".") {
        next = SkipNumber(text, next + 1);
    }
    if (next == std::wstring_view::npos) {
        return 0;
    }
    next = SkipSize(text, next);
    const bool safe = next < text.size() && kSafeTypes.find(text[next]) != std::wstring_view::npos;
    return safe ? next + 1 - at : 0;
}

}  // namespace

void EscapeUnsafeConversions(const wchar_t* text, FormatBuffer& escaped) {
    const std::wstring_view source = text;
    escaped.fill(L'\0');
    std::size_t length = 0;
    int kept = 0;
    for (std::size_t at = 0; at < source.size();) {
        std::wstring_view piece = source.substr(at, 1);
        std::wstring_view escape;
        if (source.substr(at, 2) == L"%%") {
            piece = source.substr(at, 2);
        } else if (source[at] == L'%') {
            const std::size_t conversion = SafeConversionLength(source, at);
            if (conversion != 0 && kept < kSafeConversions) {
                piece = source.substr(at, conversion);
                ++kept;
            } else {
                escape = L"%";
            }
        }
        if (length + escape.size() + piece.size() >= escaped.size()) {
            return;
        }
        length += escape.copy(&escaped[length], escape.size());
        length += piece.copy(&escaped[length], piece.size());
        at += piece.size();
    }
}

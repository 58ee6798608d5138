#include "documents/text/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace documents {

namespace {

// Well-formed sequences by their first byte, from Table 3-7 of the Unicode standard: the range of the second
// byte differs where overlong forms, surrogates and numbers over U+10FFFF begin.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the order of the columns of the table
struct Lead {
    unsigned char first;
    unsigned char last;
    std::size_t length;
    unsigned char second_first;
    unsigned char second_last;
};

constexpr Lead kLeads[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

unsigned char ByteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

constexpr unsigned char kAsciiEnd = 0x80;

// Bidirectional controls, and separators that some terminals treat as line ends.
constexpr bool ChangesTheDisplay(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || code == 0x061C || code == 0x200E ||
           code == 0x200F || (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) ||
           code == 0xFEFF;
}

std::string EscapeOf(char32_t code) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string escape = "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        escape += kDigits[(code >> shift) & 0xFU];
    }
    return escape;
}

// `stays` says which of the characters that change the display are kept.
template <class Stays>
std::string EscapedUnless(std::string_view text, Stays stays) {
    std::string escaped;
    escaped.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size();) {
        const unsigned char byte = ByteAt(text, at);
        if (byte >= 0x20 && byte < 0x7F) {
            ++at;
            continue;
        }
        const Utf8Character character = FirstCharacter(text.substr(at, 4));
        const char32_t code = character.length == 0 ? 0xFFFD : character.code;
        const std::size_t length = std::max<std::size_t>(character.length, 1);
        if (character.length == 0 || (ChangesTheDisplay(code) && !stays(code))) {
            escaped.append(text, copied, at - copied);
            escaped += EscapeOf(code);
            copied = at + length;
        }
        at += length;
    }
    return escaped.append(text, copied);
}

}  // namespace

Utf8Character FirstCharacter(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const unsigned char first = ByteAt(text, 0);
    if (first < kAsciiEnd) {
        return {first, 1};
    }
    const auto* const lead = std::find_if(std::begin(kLeads), std::end(kLeads), [&](const Lead& row) {
        return first >= row.first && first <= row.last;
    });
    if (lead == std::end(kLeads) || text.size() < lead->length || ByteAt(text, 1) < lead->second_first ||
        ByteAt(text, 1) > lead->second_last) {
        return {};
    }
    constexpr std::array<unsigned char, 5> kLeadBits = {0, 0, 0x1F, 0x0F, 0x07};
    char32_t code = first & kLeadBits[lead->length];
    for (std::size_t index = 1; index < lead->length; ++index) {
        const unsigned char byte = ByteAt(text, index);
        if ((byte & 0xC0U) != 0x80U) {
            return {};
        }
        code = (code << 6U) | (byte & 0x3FU);
    }
    return {code, lead->length};
}

void AppendUtf8(std::string& text, char32_t code) {
    const auto append = [&](char32_t bits) { text += static_cast<char>(static_cast<unsigned char>(bits)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0U | (code >> 6U));
        append(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        append(0xE0U | (code >> 12U));
        append(0x80U | ((code >> 6U) & 0x3FU));
        append(0x80U | (code & 0x3FU));
    } else {
        append(0xF0U | (code >> 18U));
        append(0x80U | ((code >> 12U) & 0x3FU));
        append(0x80U | ((code >> 6U) & 0x3FU));
        append(0x80U | (code & 0x3FU));
    }
}

std::string FromUtf16(std::u16string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        if (high && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000) {
            AppendUtf8(utf8, 0x10000U + ((unit - 0xD800U) << 10U) + (text[at + 1] - 0xDC00U));
            ++at;
        } else {
            AppendUtf8(utf8, unit >= 0xD800 && unit < 0xE000 ? char32_t{0xFFFD} : char32_t{unit});
        }
    }
    return utf8;
}

bool IsXmlCharacter(char32_t code) {
    return code == '\t' || code == '\n' || code == '\r' || (code >= 0x20 && code < 0xD800) ||
           (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

std::string PlaceOf(std::string_view text, std::size_t offset) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t at = 0; at < std::min(offset, text.size()); ++at) {
        const bool line_ends =
            text[at] == '\n' || (text[at] == '\r' && (at + 1 == text.size() || text[at + 1] != '\n'));
        if (line_ends) {
            ++line;
            column = 1;
        } else if ((ByteAt(text, at) & 0xC0U) != 0x80U) {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string Escaped(std::string_view text) {
    return EscapedUnless(text, [](char32_t) { return false; });
}

std::string EscapedJson(std::string_view json) {
    return EscapedUnless(json, [](char32_t code) { return code == '\n'; });
}

}  // namespace documents

// The text functions of windows.h, for valid and invalid texts. Only the letters of Latin 1 have upper case
// here.

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Character {
    char32_t code;
    std::size_t units;
};

bool Continues(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

Character FromUtf8(const char* text, std::size_t size) {
    const auto first = static_cast<unsigned char>(*text);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length < 2 || length > size) {
        return {length == 1 ? first : kReplacement, 1};
    }
    char32_t code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!Continues(text[i])) {
            return {kReplacement, 1};
        }
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool valid = code >= kLeast[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    return valid ? Character{code, length} : Character{kReplacement, 1};
}

Character FromUtf16(const wchar_t* text, std::size_t size) {
    const auto unit = static_cast<char32_t>(text[0]);
    if (unit < 0xD800 || unit > 0xDFFF) {
        return {unit, 1};
    }
    const char32_t low = size > 1 ? static_cast<char32_t>(text[1]) : 0;
    if (unit > 0xDBFF || low < 0xDC00 || low > 0xDFFF) {
        return {kReplacement, 1};
    }
    return {0x10000 + ((unit & 0x3FF) << 10) + (low & 0x3FF), 2};
}

void AppendUtf16(std::wstring& text, char32_t code) {
    if (code < 0x10000) {
        text += static_cast<wchar_t>(code);
        return;
    }
    text += static_cast<wchar_t>(0xD7C0 + (code >> 10));
    text += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
}

void AppendUtf8(std::string& text, char32_t code) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | code >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

// Copies the converted text if there is room. Returns its length.
template <class Text>
int Give(const Text& converted, typename Text::value_type* room, int size) {
    if (size >= static_cast<int>(converted.size())) {
        converted.copy(room, converted.size());
    }
    return static_cast<int>(converted.size());
}

}  // namespace

int MultiByteToWideChar(DWORD, DWORD, const char* utf8, int size, wchar_t* text, int room) {
    std::wstring converted;
    for (std::size_t i = 0; i < static_cast<std::size_t>(size);) {
        const Character character = FromUtf8(utf8 + i, static_cast<std::size_t>(size) - i);
        AppendUtf16(converted, character.code);
        i += character.units;
    }
    return Give(converted, text, room);
}

int WideCharToMultiByte(DWORD, DWORD, const wchar_t* text, int size, char* utf8, int room, const char*,
                        BOOL*) {
    std::string converted;
    for (std::size_t i = 0; i < static_cast<std::size_t>(size);) {
        const Character character = FromUtf16(text + i, static_cast<std::size_t>(size) - i);
        AppendUtf8(converted, character.code);
        i += character.units;
    }
    return Give(converted, utf8, room);
}

int LCMapStringW(DWORD, DWORD, const wchar_t* text, int size, wchar_t* mapped, int room) {
    std::wstring upper(text, static_cast<std::size_t>(size));
    for (wchar_t& c : upper) {
        if (c >= 0xE0 && c <= 0xFE && c != 0xF7) {
            c -= 0x20;
        }
    }
    return Give(upper, mapped, room);
}

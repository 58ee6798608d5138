#include "machine/description/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace machine {
namespace {

std::uint64_t Hash(std::string_view text, std::uint64_t start) {
    std::uint64_t hash = start;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    }
    hash ^= hash >> 33;
    hash *= 0xFF51AFD7ED558CCDULL;
    return hash ^ (hash >> 33);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

std::wstring Widen(std::string_view utf8) {
    if (utf8.empty()) {
        return {};
    }
    const int size = static_cast<int>(utf8.size());
    std::wstring text(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), 0);
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), static_cast<int>(text.size()));
    return text;
}

std::string Narrow(std::wstring_view text) {
    if (text.empty()) {
        return {};
    }
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(needed), 0);
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::wstring WideText(const std::vector<std::uint8_t>& bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::copy_n(bytes.begin(), text.size() * sizeof(wchar_t), reinterpret_cast<std::uint8_t*>(text.data()));
    return text;
}

std::vector<std::wstring> TerminatedTexts(std::wstring_view all) {
    std::vector<std::wstring> texts;
    while (!all.empty()) {
        const std::size_t end = std::min(all.find(L'\0'), all.size());
        texts.emplace_back(all.substr(0, end));
        all.remove_prefix(std::min(end + 1, all.size()));
    }
    return texts;
}

std::wstring Folded(std::wstring_view text) {
    std::wstring folded(text);
    bool ascii = true;
    for (wchar_t& c : folded) {
        if (c >= L'a' && c <= L'z') {
            c = static_cast<wchar_t>(c - 0x20);
        }
        ascii = ascii && c < 0x80;
    }
    if (!ascii) {
        const int size = static_cast<int>(folded.size());
        LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, folded.c_str(), size, folded.data(), size);
    }
    return folded;
}

bool EqualNames(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() && Folded(left) == Folded(right);
}

bool StartsWith(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() && EqualNames(text.substr(0, prefix.size()), prefix);
}

std::optional<std::uint32_t> DriveNumber(std::wstring_view root) {
    if (root.size() < 2 || root.size() > 3 || root[1] != L':' || (root.size() == 3 && root[2] != L'\\')) {
        return std::nullopt;
    }
    const auto letter = static_cast<wchar_t>(root[0] | 0x20);
    if (letter < L'a' || letter > L'z') {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(letter - L'a');
}

std::wstring VolumeName(const std::wstring& guid) {
    return L"\\\\?\\Volume" + guid + L"\\";
}

std::string GuidText(const GUID& guid) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "{%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x}", guid.Data1,
                  guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3],
                  guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text.data();
}

std::optional<GUID> ParseGuid(std::string_view text) {
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}') {
        text = text.substr(1, text.size() - 2);
    }
    if (text.size() != 36) {
        return std::nullopt;
    }
    std::array<std::uint8_t, 16> digits{};
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (text[i] != '-') {
                return std::nullopt;
            }
            continue;
        }
        const int digit = HexDigit(text[i]);
        if (digit < 0) {
            return std::nullopt;
        }
        digits[count / 2] = static_cast<std::uint8_t>((digits[count / 2] << 4) | digit);
        ++count;
    }
    GUID guid{};
    guid.Data1 = static_cast<unsigned long>(digits[0]) << 24 | static_cast<unsigned long>(digits[1]) << 16 |
                 static_cast<unsigned long>(digits[2]) << 8 | digits[3];
    guid.Data2 = static_cast<unsigned short>(digits[4] << 8 | digits[5]);
    guid.Data3 = static_cast<unsigned short>(digits[6] << 8 | digits[7]);
    std::copy(digits.begin() + 8, digits.end(), guid.Data4);
    return guid;
}

GUID DerivedGuid(std::string_view seed) {
    const std::uint64_t high = Hash(seed, 0xCBF29CE484222325ULL);
    const std::uint64_t low = Hash(seed, 0x84222325CBF29CE4ULL);
    GUID guid{};
    guid.Data1 = static_cast<unsigned long>(high >> 32);
    guid.Data2 = static_cast<unsigned short>(high >> 16);
    guid.Data3 = static_cast<unsigned short>((high & 0x0FFF) | 0x4000);
    for (std::size_t i = 0; i < 8; ++i) {
        guid.Data4[i] = static_cast<unsigned char>(low >> (8 * i));
    }
    guid.Data4[0] = static_cast<unsigned char>((guid.Data4[0] & 0x3F) | 0x80);
    return guid;
}

std::uint32_t DerivedNumber(std::string_view seed) {
    const auto number = static_cast<std::uint32_t>(Hash(seed, 0xCBF29CE484222325ULL) >> 16);
    return number == 0 ? 1 : number;
}

}  // namespace machine

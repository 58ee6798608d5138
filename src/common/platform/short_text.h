#pragma once

#include "common/windows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string_view>

// A number or a GUID as text that is kept in place: a document holds them by the thousand.
class ShortText {
public:
    // Plain decimal, whatever the host's locale.
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) explicit ShortText(Number number) {
        std::array<char, kCharacters> digits{};
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        length_ = static_cast<std::size_t>(end - digits.data());
        std::copy_n(digits.data(), length_, letters_.data());
    }

    // Registry form: upper case, in braces.
    explicit ShortText(const GUID& guid);

    operator std::wstring_view() const { return {letters_.data(), length_}; }

    friend bool operator==(const ShortText& a, std::wstring_view b) { return std::wstring_view(a) == b; }

private:
    void Append(wchar_t letter) { letters_[length_++] = letter; }
    void AppendByte(unsigned value);

    static constexpr std::size_t kCharacters = 38;  // of a GUID; a number has at most 20

    std::array<wchar_t, kCharacters> letters_{};
    std::size_t length_ = 0;
};

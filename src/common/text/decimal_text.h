#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

// The decimal digits of a number, with its sign, independent of the locale. (std::to_wstring would link a
// whole formatter into the library.)
class DecimalDigits {
public:
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) explicit DecimalDigits(Number number) {
        std::array<char, 20> digits{};  // enough for the longest number, INT64_MIN
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        length_ = static_cast<std::size_t>(end - digits.data());
        for (std::size_t i = 0; i < length_; ++i) {
            digits_[i] = static_cast<wchar_t>(digits[i]);
        }
    }

    // Valid as long as this object.
    std::wstring_view view() const { return {digits_.data(), length_}; }

private:
    std::array<wchar_t, 20> digits_{};
    std::size_t length_ = 0;
};

// The same as a text.
template <std::integral Number>
requires(!std::same_as<Number, bool>) std::wstring DecimalText(Number number) {
    return std::wstring(DecimalDigits(number).view());
}

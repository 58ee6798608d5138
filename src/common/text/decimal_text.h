#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <string>

// A number in decimal, independent of the locale. (std::to_wstring would link a whole formatter into the
// library.)
template <std::integral Number>
requires(!std::same_as<Number, bool>) std::wstring DecimalText(Number number) {
    std::array<char, 20> digits{};  // enough for the longest number, INT64_MIN
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    std::wstring text(digits.data(), end);
    return text;
}

#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <string>

// A number in plain decimal, whatever the host's locale. (std::to_wstring brings a whole
// formatter into the library.)
template <std::integral Number>
requires(!std::same_as<Number, bool>) std::wstring DecimalText(Number number) {
    std::array<char, 20> digits{};  // of the longest, INT64_MIN
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    std::wstring text(digits.data(), end);
    return text;
}

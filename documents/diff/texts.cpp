#include "documents/diff/texts.h"

#include <string_view>

namespace documents::diff {

namespace {

std::string Hexadecimal(std::uint32_t number, std::size_t digits) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text(digits, '0');
    for (std::size_t place = digits; place-- > 0; number /= 16U) {
        text[place] = kDigits[number % 16U];
    }
    return text;
}

}  // namespace

std::string SerialText(std::uint32_t serial) {
    return Hexadecimal(serial >> 16U, 4) + '-' + Hexadecimal(serial, 4);
}

std::string SignatureText(std::uint32_t signature) {
    return "0x" + Hexadecimal(signature, 8);
}

std::string TypeText(std::uint8_t type) {
    return "0x" + Hexadecimal(type, 2);
}

}  // namespace documents::diff

#include "documents/show/styled_line.h"

#include "documents/text/utf8.h"

#include <algorithm>
#include <array>

namespace documents {

namespace {

constexpr std::array<std::string_view, 4> kBegin = {"", "\x1b[1m", "\x1b[32m", "\x1b[2m"};
constexpr std::string_view kEnd = "\x1b[0m";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

bool BeginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

std::size_t Width(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

// The first `width` characters.
std::string_view Beginning(std::string_view text, std::size_t width) {
    std::size_t at = 0;
    while (at < text.size()) {
        if (BeginsCharacter(text[at]) && width-- == 0) {
            break;
        }
        ++at;
    }
    return text.substr(0, at);
}

}  // namespace

StyledLine& StyledLine::Add(std::string_view text, Colour colour) {
    parts_.push_back({Escaped(text), colour});
    return *this;
}

StyledLine& StyledLine::AddItem(std::string_view text, Colour colour) {
    if (has_items_) {
        parts_.push_back({", ", Colour::kPlain});
    }
    has_items_ = true;
    return Add(text, colour);
}

std::string StyledLine::Text(bool colours, const std::optional<std::size_t>& width) const {
    std::size_t whole = 0;
    for (const Part& part : parts_) {
        whole += width ? Width(part.text) : 0;
    }
    const bool cut = width && whole > *width;
    std::size_t left = cut ? std::max<std::size_t>(*width, 1) - 1 : whole;
    std::string line;
    for (const Part& part : parts_) {
        const std::string_view text = cut ? Beginning(part.text, left) : std::string_view(part.text);
        left -= cut ? Width(text) : 0;
        const bool coloured = colours && part.colour != Colour::kPlain && !text.empty();
        line += coloured ? kBegin.at(static_cast<std::size_t>(part.colour)) : std::string_view();
        line += text;
        line += coloured ? kEnd : std::string_view();
    }
    line += cut ? kEllipsis : std::string_view();
    return line + '\n';
}

}  // namespace documents

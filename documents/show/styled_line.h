#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

enum class Colour { kPlain, kBold, kGreen, kDim };

// A line of a terminal, put together from parts. Control characters are escaped.
class StyledLine {
public:
    StyledLine& Add(std::string_view text, Colour colour = Colour::kPlain);
    // The same, behind a comma if there is something before it.
    StyledLine& AddItem(std::string_view text, Colour colour = Colour::kPlain);

    // With a line feed. If the line has more characters than `width`, it is cut and ends in "…".
    std::string Text(bool colours, const std::optional<std::size_t>& width) const;

private:
    struct Part {
        std::string text;
        Colour colour;
    };
    std::vector<Part> parts_;
    bool has_items_ = false;
};

}  // namespace documents

#include "tools/orvane/log_lines.h"

#include <charconv>

namespace host {

std::optional<std::string_view> After(std::string_view line, std::string_view beginning) {
    return line.starts_with(beginning) ? std::optional(line.substr(beginning.size())) : std::nullopt;
}

std::optional<std::uint32_t> NumberAfter(std::string_view line, std::string_view beginning) {
    const std::optional<std::string_view> text = After(line, beginning);
    if (!text) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    const char* const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

bool IsLostLine(const LogMessage& message) {
    return message.level == ORVANE_LEVEL_WARNING && message.text.starts_with("ASSERTION FAILED");
}

}  // namespace host

#pragma once

#include "tools/orvane/log_sink.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// What follows `beginning` in the line; none when the line begins otherwise.
std::optional<std::string_view> After(std::string_view line, std::string_view beginning);

// The same for a line that ends in a decimal number, and in nothing else.
std::optional<std::uint32_t> NumberAfter(std::string_view line, std::string_view beginning);

// Whether the message stands for another one that could not be converted.
bool IsLostLine(const LogMessage& message);

}  // namespace host

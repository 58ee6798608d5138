#pragma once

#include "tools/orvane/log_sink.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// The rest of the line after `beginning`; none if the line begins with other text.
std::optional<std::string_view> After(std::string_view line, std::string_view beginning);

// The same as a number; none if the rest is not just a decimal number.
std::optional<std::uint32_t> NumberAfter(std::string_view line, std::string_view beginning);

// Whether the message replaces another one that could not be converted.
bool IsLostLine(const LogMessage& message);

}  // namespace host

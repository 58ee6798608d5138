#pragma once

#include "common/windows.h"

#include <optional>
#include <string>
#include <string_view>

namespace machine {

std::wstring Widen(std::string_view utf8);
std::string Narrow(std::wstring_view text);

// Upper case by the rules that object and device names are compared by.
std::wstring Folded(std::wstring_view text);

bool EqualNames(std::wstring_view left, std::wstring_view right);

// Compared without regard to case.
bool StartsWith(std::wstring_view text, std::wstring_view prefix);

// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" in lower case, as volume names have it.
std::string GuidText(const GUID& guid);

// The text with or without braces; none when it is no GUID.
std::optional<GUID> ParseGuid(std::string_view text);

// A GUID that is always the same for the same seed and looks random (version 4).
GUID DerivedGuid(std::string_view seed);

// A 32-bit number that is always the same for the same seed, never 0.
std::uint32_t DerivedNumber(std::string_view seed);

}  // namespace machine

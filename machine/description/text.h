#pragma once

#include "common/windows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

std::wstring Widen(std::string_view utf8);
std::string Narrow(std::wstring_view text);

// The text whose UTF-16 units the bytes are. An odd byte at the end belongs to no unit.
std::wstring WideText(const std::vector<std::uint8_t>& bytes);

// The texts of which each ends with a terminator, empty ones too. The last text may lack its terminator.
std::vector<std::wstring> TerminatedTexts(std::wstring_view all);

// Converts to upper case by the rules with which object and device names are compared.
std::wstring Folded(std::wstring_view text);

bool EqualNames(std::wstring_view left, std::wstring_view right);

// Ignores case.
bool StartsWith(std::wstring_view text, std::wstring_view prefix);

// The drive number of a root like "C:\", 0 for A; none if the path is not a drive root.
std::optional<std::uint32_t> DriveNumber(std::wstring_view root);

// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}" in lower case, as in volume names.
std::string GuidText(const GUID& guid);

// "\\?\Volume{...}\", for a GUID with braces.
std::wstring VolumeName(const std::wstring& guid);

// Parses a GUID with or without braces; none if the text is not a GUID.
std::optional<GUID> ParseGuid(std::string_view text);

// A version 4 GUID computed from the seed. The same seed always gives the same GUID.
GUID DerivedGuid(std::string_view seed);

// A 32-bit number computed from the seed, never 0. The same seed always gives the same number.
std::uint32_t DerivedNumber(std::string_view seed);

}  // namespace machine

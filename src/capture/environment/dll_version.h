#pragma once

#include <string>

// The product version, "9.50.6732". It stands in the file VERSION, for the whole build.
inline constexpr char kDllVersion[] = ORVANE_VERSION;

// The version as the record holds it, with a trailing dot: compatibility C61
inline std::wstring RecordedDllVersion() {
    return L"" ORVANE_VERSION ".";
}

#pragma once

#include <string>

// The product's version, "9.50.6732". The build defines it, once for the library's resource and for this.
inline constexpr char kDllVersion[] = ORVANE_VERSION;

// As the record has it, with a dot behind it: compatibility C61
inline std::wstring RecordedDllVersion() {
    return L"" ORVANE_VERSION ".";
}

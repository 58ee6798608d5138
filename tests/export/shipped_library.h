#pragma once

#include "tools/orvane/orvane_library.h"

#include <cstdint>
#include <string>
#include <vector>

// The shipped library, loaded once per test program and redirected to the simulation.
class ShippedLibrary : public host::OrvaneLibrary {
public:
    static const ShippedLibrary& Get();

    // Passes the volumes as a multi-string.
    std::int64_t Select(const std::vector<std::wstring>& volumes) const;

    // Restores the settings that the library has after loading.
    void ResetSettings() const;

private:
    ShippedLibrary();
};

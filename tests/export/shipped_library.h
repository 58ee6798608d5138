#pragma once

#include "tools/orvane/orvane_library.h"

#include <cstdint>
#include <string>
#include <vector>

// The library as it is shipped, loaded once for the test program and put on the simulation.
class ShippedLibrary : public host::OrvaneLibrary {
public:
    static const ShippedLibrary& Get();

    // Hands over the volumes as a multi-string.
    std::int64_t Select(const std::vector<std::wstring>& volumes) const;

    // The settings as they are after loading.
    void ResetSettings() const;

private:
    ShippedLibrary();
};

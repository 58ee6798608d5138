#pragma once

#include "common/windows.h"
#include "orvane/orvane.h"

#include <cstdint>
#include <string>
#include <vector>

// The library as it is shipped, loaded once for the test program and put on the simulation, and its exports.
class ShippedLibrary {
public:
    static const ShippedLibrary& Get();

    HMODULE module;
    decltype(&::GetOrvaneVersion) GetOrvaneVersion;
    decltype(&::SetEventFunc) SetEventFunc;
    decltype(&::SetXmlFormat) SetXmlFormat;
    decltype(&::SetupSelectedVolumesList) SetupSelectedVolumesList;
    decltype(&::CaptureSystemRestorePointInfo) CaptureSystemRestorePointInfo;
    decltype(&::WMIDumpInfo) WMIDumpInfo;
    decltype(&::DiskDumpInfo) DiskDumpInfo;
    decltype(&::VolumeDumpInfo) VolumeDumpInfo;
    decltype(&::FirmwareDumpInfo) FirmwareDumpInfo;

    // Hands over the volumes as a multi-string.
    std::int64_t Select(const std::vector<std::wstring>& volumes) const;

    // The settings as they are after loading.
    void ResetSettings() const;

private:
    ShippedLibrary();
};

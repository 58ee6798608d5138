#pragma once

#include "common/platform/wmi.h"

// The disk drives that the system's management information lists.

// What a drive without a physical disk number is listed under: compatibility C101
inline constexpr int kNoDiskIndex = 255;

enum class DriveListing { kNotConnected, kNoneFound, kStopped, kWhole };

// Calls `visit(drive)` for every drive until it returns false. `drive` is the CWmi that stands on it.
template <class Visit>
DriveListing VisitDiskDrives(Visit&& visit) {
    CWmi drives(L"Select * from Win32_DiskDrive");
    if (!drives.initialized()) {
        return DriveListing::kNotConnected;
    }
    if (!drives.FindFirstObject()) {
        return DriveListing::kNoneFound;
    }
    do {
        if (!visit(drives)) {
            return DriveListing::kStopped;
        }
    } while (drives.FindNextObject());
    return DriveListing::kWhole;
}

#pragma once

#include "common/platform/wmi.h"

// Enumerates the disk drives that WMI lists.

// The index that WMI reports for a drive without a physical disk number: compatibility C101
inline constexpr int kNoDiskIndex = 255;

enum class DriveListing { kNotConnected, kNoneFound, kStopped, kWhole };

// Calls `visit(drive)` for each drive until it returns false. `drive` is the CWmi cursor, positioned on that
// drive.
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

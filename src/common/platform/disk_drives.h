#pragma once

#include "common/platform/wmi.h"

// The disk drives that WMI reports.

inline constexpr wchar_t kDiskDriveQuery[] = L"Select * from Win32_DiskDrive";

// The index of a drive that has no physical disk number: compatibility C101
inline constexpr int kNoDiskIndex = 255;

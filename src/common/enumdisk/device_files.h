#pragma once

#include "common/platform/decimal_text.h"
#include "common/platform/unique_handle.h"

#include <cstdint>
#include <string>

// "\\.\PhysicalDriveN".
inline std::wstring PhysicalDriveName(std::uint32_t disk_number) {
    return L"\\\\.\\PhysicalDrive" + DecimalText(disk_number);
}

// Opens a device that exists. Empty on failure, with the thread's last error.
inline UniqueFile OpenDevice(const std::wstring& path, DWORD access,
                             DWORD share_mode = FILE_SHARE_READ | FILE_SHARE_WRITE) {
    return UniqueFile(CallBound(Kernel32DLL::Get().CreateFileW, HANDLE{INVALID_HANDLE_VALUE}, path.c_str(),
                                access, share_mode, nullptr, DWORD{OPEN_EXISTING}, DWORD{0},
                                HANDLE{nullptr}));
}

#pragma once

#include "common/windows.h"

#include <winternl.h>

namespace recorder {

// The system functions that the questions use: those that the library looks up at run time. A function that
// was not found is null.
struct SystemFunctions {
    using Finder = FARPROC(WINAPI*)(HMODULE, LPCSTR);

    // `find` is GetProcAddress, or its replacement on a described machine.
    explicit SystemFunctions(Finder find);

    decltype(&::QueryDosDeviceW) QueryDosDeviceW = nullptr;
    decltype(&::GetVolumeNameForVolumeMountPointW) GetVolumeNameForVolumeMountPointW = nullptr;
    decltype(&::GetVolumePathNamesForVolumeNameW) GetVolumePathNamesForVolumeNameW = nullptr;
    decltype(&::GetLogicalDrives) GetLogicalDrives = nullptr;
    decltype(&::GetDriveTypeW) GetDriveTypeW = nullptr;
    decltype(&::GetDiskFreeSpaceW) GetDiskFreeSpaceW = nullptr;
    decltype(&::GetDiskFreeSpaceExW) GetDiskFreeSpaceExW = nullptr;
    decltype(&::GetVolumeInformationW) GetVolumeInformationW = nullptr;
    decltype(&::FindFirstVolumeW) FindFirstVolumeW = nullptr;
    decltype(&::FindNextVolumeW) FindNextVolumeW = nullptr;
    decltype(&::FindVolumeClose) FindVolumeClose = nullptr;
    decltype(&::CreateFileW) CreateFileW = nullptr;
    decltype(&::CloseHandle) CloseHandle = nullptr;
    decltype(&::DeviceIoControl) DeviceIoControl = nullptr;
    decltype(&::GetFirmwareType) GetFirmwareType = nullptr;
    decltype(&::GetFirmwareEnvironmentVariableW) GetFirmwareEnvironmentVariableW = nullptr;

    NTSTATUS(NTAPI* ZwOpenDirectoryObject)(PHANDLE, ACCESS_MASK, POBJECT_ATTRIBUTES) = nullptr;
    NTSTATUS(NTAPI* ZwQueryDirectoryObject)
    (HANDLE, PVOID, ULONG, BOOLEAN single, BOOLEAN restart, PULONG context, PULONG returned) = nullptr;
    NTSTATUS(NTAPI* ZwClose)(HANDLE) = nullptr;
};

}  // namespace recorder

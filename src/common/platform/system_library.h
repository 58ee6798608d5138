#pragma once

#include "common/windows.h"

#include <winternl.h>

// Two tables of system functions that are bound at run time, on first use. A function that was not found is
// null. The first use may come from any thread; afterwards the tables are only read. A failed binding is
// logged once and never retried: compatibility C160

// The functions of kernel32.dll, each under its own name.
struct Kernel32DLL {
    // The process-wide table. The first call binds it.
    static Kernel32DLL& Get();

    Kernel32DLL() = default;
    // Releases the module if it is still loaded.
    ~Kernel32DLL();
    Kernel32DLL(const Kernel32DLL&) = delete;
    Kernel32DLL& operator=(const Kernel32DLL&) = delete;

    // Loads the library and looks up every function. A failure is logged but not returned.
    void Bind();

    decltype(&::CreateWaitableTimerA) CreateWaitableTimerA = nullptr;
    decltype(&::SetWaitableTimer) SetWaitableTimer = nullptr;
    decltype(&::CreateDirectoryW) CreateDirectoryW = nullptr;
    decltype(&::SetFileAttributesW) SetFileAttributesW = nullptr;
    decltype(&::GetComputerNameExW) GetComputerNameExW = nullptr;
    decltype(&::QueryDosDeviceW) QueryDosDeviceW = nullptr;
    decltype(&::GetVolumePathNameW) GetVolumePathNameW = nullptr;
    decltype(&::GetVolumeNameForVolumeMountPointW) GetVolumeNameForVolumeMountPointW = nullptr;
    decltype(&::CreateHardLinkW) CreateHardLinkW = nullptr;
    decltype(&::GetLogicalDrives) GetLogicalDrives = nullptr;
    decltype(&::GetDriveTypeW) GetDriveTypeW = nullptr;
    decltype(&::GetDiskFreeSpaceW) GetDiskFreeSpaceW = nullptr;
    decltype(&::GetDiskFreeSpaceExW) GetDiskFreeSpaceExW = nullptr;
    decltype(&::FindFirstVolumeW) FindFirstVolumeW = nullptr;
    decltype(&::FindNextVolumeW) FindNextVolumeW = nullptr;
    decltype(&::FindVolumeClose) FindVolumeClose = nullptr;
    decltype(&::DeviceIoControl) DeviceIoControl = nullptr;
    decltype(&::GetVolumeInformationW) GetVolumeInformationW = nullptr;
    decltype(&::GetVolumePathNamesForVolumeNameW) GetVolumePathNamesForVolumeNameW = nullptr;
    decltype(&::CreateFileW) CreateFileW = nullptr;
    decltype(&::CreateProcessW) CreateProcessW = nullptr;
    decltype(&::CloseHandle) CloseHandle = nullptr;
    decltype(&::FlushFileBuffers) FlushFileBuffers = nullptr;
    decltype(&::GetFirmwareType) GetFirmwareType = nullptr;
    decltype(&::GetFirmwareEnvironmentVariableW) GetFirmwareEnvironmentVariableW = nullptr;
    decltype(&::DefineDosDeviceW) DefineDosDeviceW = nullptr;
    decltype(&::GetExitCodeProcess) GetExitCodeProcess = nullptr;
    decltype(&::WaitForSingleObject) WaitForSingleObject = nullptr;
    decltype(&::IsWow64Process) IsWow64Process = nullptr;
    decltype(&::GetCurrentProcess) GetCurrentProcess = nullptr;
    decltype(&::GetSystemDirectoryW) GetSystemDirectoryW = nullptr;
    decltype(&::WriteFile) WriteFile = nullptr;
    HMODULE module = nullptr;
};

// The object directory functions of ntdll.dll.
struct NtDLL {
    // The process-wide table. The first call binds it.
    static NtDLL& Get();

    NtDLL() = default;
    // Releases the module if it is still loaded.
    ~NtDLL();
    NtDLL(const NtDLL&) = delete;
    NtDLL& operator=(const NtDLL&) = delete;

    // Loads the library and looks up every function. A failure is logged but not returned.
    void Bind();

    using ZwCloseFunction = NTSTATUS(NTAPI*)(HANDLE handle);
    using ZwQueryDirectoryObjectFunction = NTSTATUS(NTAPI*)(HANDLE directory, void* buffer,
                                                            ULONG buffer_bytes, BOOLEAN return_single_entry,
                                                            BOOLEAN restart_scan, ULONG* context,
                                                            ULONG* returned_bytes);
    using ZwOpenDirectoryObjectFunction = NTSTATUS(NTAPI*)(HANDLE* directory, ACCESS_MASK access,
                                                           OBJECT_ATTRIBUTES* attributes);

    ZwCloseFunction ZwClose = nullptr;
    ZwQueryDirectoryObjectFunction ZwQueryDirectoryObject = nullptr;
    ZwOpenDirectoryObjectFunction ZwOpenDirectoryObject = nullptr;
    HMODULE module = nullptr;
};

// Calls a bound function. If it is missing, sets the last error to ERROR_PROC_NOT_FOUND and returns
// `when_missing`.
template <class Result, class... Parameters, class... Arguments>
Result CallBound(Result(WINAPI* function)(Parameters...), Result when_missing, Arguments... arguments) {
    if (function == nullptr) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return when_missing;
    }
    return function(arguments...);
}

#pragma once

#include "common/windows.h"

#include <winternl.h>

// The two tables of system functions that are bound at run time, on first use. A function that could not be
// found stays null. First use may come from any thread; after it the tables are only read. A failed binding
// is logged once and never tried again: compatibility C160

// The functions of kernel32.dll, each under its own name.
struct Kernel32DLL {
    // The process-wide table; the first call binds it.
    static Kernel32DLL& Get();

    Kernel32DLL() = default;
    // Releases the module if it is still held.
    ~Kernel32DLL();
    Kernel32DLL(const Kernel32DLL&) = delete;
    Kernel32DLL& operator=(const Kernel32DLL&) = delete;

    // Loads the library and looks every function up; logs and swallows a failure.
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

// The functions of ntdll.dll over object directories.
struct NtDLL {
    // The process-wide table; the first call binds it.
    static NtDLL& Get();

    NtDLL() = default;
    // Releases the module if it is still held.
    ~NtDLL();
    NtDLL(const NtDLL&) = delete;
    NtDLL& operator=(const NtDLL&) = delete;

    // Loads the library and looks every function up; logs and swallows a failure.
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

// Calls a bound function; where the system lacks it, answers `when_missing` with ERROR_PROC_NOT_FOUND
// instead.
template <class Result, class... Parameters, class... Arguments>
Result CallBound(Result(WINAPI* function)(Parameters...), Result when_missing, Arguments... arguments) {
    if (function == nullptr) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return when_missing;
    }
    return function(arguments...);
}

#pragma once

#include <string>
#include <vector>

// The names of the functions in the bound tables.
using Names = std::vector<std::string>;

inline const Names kKernelMembers = {"CreateWaitableTimerA",
                                     "SetWaitableTimer",
                                     "CreateDirectoryW",
                                     "SetFileAttributesW",
                                     "GetComputerNameExW",
                                     "QueryDosDeviceW",
                                     "GetVolumePathNameW",
                                     "GetVolumeNameForVolumeMountPointW",
                                     "CreateHardLinkW",
                                     "GetLogicalDrives",
                                     "GetDriveTypeW",
                                     "GetDiskFreeSpaceW",
                                     "GetDiskFreeSpaceExW",
                                     "FindFirstVolumeW",
                                     "FindNextVolumeW",
                                     "FindVolumeClose",
                                     "DeviceIoControl",
                                     "GetVolumeInformationW",
                                     "GetVolumePathNamesForVolumeNameW",
                                     "CreateFileW",
                                     "CreateProcessW",
                                     "CloseHandle",
                                     "FlushFileBuffers",
                                     "GetFirmwareType",
                                     "GetFirmwareEnvironmentVariableW",
                                     "DefineDosDeviceW",
                                     "GetExitCodeProcess",
                                     "WaitForSingleObject",
                                     "IsWow64Process",
                                     "GetCurrentProcess",
                                     "GetSystemDirectoryW",
                                     "WriteFile"};

inline const Names kKernelBindingOrder = {"CreateWaitableTimerA",
                                          "SetWaitableTimer",
                                          "CreateDirectoryW",
                                          "SetFileAttributesW",
                                          "GetComputerNameExW",
                                          "GetVolumePathNameW",
                                          "GetVolumeNameForVolumeMountPointW",
                                          "CreateHardLinkW",
                                          "QueryDosDeviceW",
                                          "GetLogicalDrives",
                                          "GetDriveTypeW",
                                          "GetDiskFreeSpaceW",
                                          "GetDiskFreeSpaceExW",
                                          "FindFirstVolumeW",
                                          "FindNextVolumeW",
                                          "FindVolumeClose",
                                          "DeviceIoControl",
                                          "GetVolumeInformationW",
                                          "GetVolumePathNamesForVolumeNameW",
                                          "CreateFileW",
                                          "CreateProcessW",
                                          "CloseHandle",
                                          "FlushFileBuffers",
                                          "GetFirmwareType",
                                          "GetFirmwareEnvironmentVariableW",
                                          "DefineDosDeviceW",
                                          "GetExitCodeProcess",
                                          "WaitForSingleObject",
                                          "IsWow64Process",
                                          "GetCurrentProcess",
                                          "GetSystemDirectoryW",
                                          "WriteFile"};

// The members have the same order.
inline const Names kNtBindingOrder = {"ZwClose", "ZwQueryDirectoryObject", "ZwOpenDirectoryObject"};
inline const Names kNtMembers = kNtBindingOrder;

#pragma once

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

// The names of the functions in the bound tables.
using Names = std::vector<std::string>;

// The names in a text, which blanks separate.
inline Names NamesIn(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

inline const Names kKernelBindingOrder = NamesIn(
    "CreateWaitableTimerA SetWaitableTimer CreateDirectoryW SetFileAttributesW GetComputerNameExW "
    "GetVolumePathNameW GetVolumeNameForVolumeMountPointW CreateHardLinkW QueryDosDeviceW "
    "GetLogicalDrives GetDriveTypeW GetDiskFreeSpaceW GetDiskFreeSpaceExW FindFirstVolumeW "
    "FindNextVolumeW FindVolumeClose DeviceIoControl GetVolumeInformationW "
    "GetVolumePathNamesForVolumeNameW CreateFileW CreateProcessW CloseHandle FlushFileBuffers "
    "GetFirmwareType GetFirmwareEnvironmentVariableW DefineDosDeviceW GetExitCodeProcess "
    "WaitForSingleObject IsWow64Process GetCurrentProcess GetSystemDirectoryW WriteFile");

// QueryDosDeviceW stands elsewhere among the members.
inline const Names kKernelMembers = [] {
    const std::string moved = "QueryDosDeviceW";
    Names names = kKernelBindingOrder;
    names.erase(std::find(names.begin(), names.end(), moved));
    names.insert(std::find(names.begin(), names.end(), "GetVolumePathNameW"), moved);
    return names;
}();

// The members have the same order.
inline const Names kNtBindingOrder = {"ZwClose", "ZwQueryDirectoryObject", "ZwOpenDirectoryObject"};
inline const Names kNtMembers = kNtBindingOrder;

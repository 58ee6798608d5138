#pragma once

#include "common/windows.h"

#include <set>
#include <string>
#include <vector>

namespace support {

// What a library asked of the system, each kind once:
//   "CreateFileW for reading"               a device opened; the access, and "creating" unless it must exist
//   "DeviceIoControl IOCTL_..."
//   "RegOpenKeyExW KEY for reading"
//   "AdjustTokenPrivileges enables NAME", "OpenProcessToken"
//   "LoadLibraryW NAME"
//   "CoCreateInstance {CLSID}", "CoInitializeSecurity", "CoSetProxyBlanket"
//   "SetThreadErrorMode"
//   "WriteFile" and the others of ChangingFunctions(), which are not carried out
// Functions that only read or only use the library's own memory are not watched. Single-threaded.
struct Requests {
    std::set<std::string> kinds;
    std::set<std::wstring> opened;  // the names passed to CreateFileW, as they were

    void Clear();
};

Requests& RequestsOfLibrary();

// True for the name of a disk, of a volume, or of a volume's device: "\\.\PhysicalDrive0", "\\?\Volume{GUID}"
// with or without a backslash at its end, "\\.\C:", "\\?\GLOBALROOT\Device\HarddiskVolume1".
bool IsDiskOrVolume(const std::wstring& name);

// Watches a module from now on until it is unloaded. It must have been put on the simulation, and no export
// may have been called yet: the first call looks functions up. Throws std::runtime_error if the module does
// not import a watched function.
void WatchRequests(HMODULE module);

// The functions that change something outside of the library, among those that the library imports or looks
// up.
const std::vector<std::string>& ChangingFunctions();

}  // namespace support

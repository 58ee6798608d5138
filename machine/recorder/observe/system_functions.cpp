#include "machine/recorder/observe/system_functions.h"

namespace recorder {
namespace {

template <class Function>
void Bind(SystemFunctions::Finder find, const wchar_t* library, const char* name, Function& function) {
    function =
        reinterpret_cast<Function>(reinterpret_cast<void (*)()>(find(GetModuleHandleW(library), name)));
}

}  // namespace

SystemFunctions::SystemFunctions(Finder find) {
    const auto kernel = [&](const char* name, auto& function) {
        Bind(find, L"kernel32.dll", name, function);
    };
    kernel("QueryDosDeviceW", QueryDosDeviceW);
    kernel("GetVolumeNameForVolumeMountPointW", GetVolumeNameForVolumeMountPointW);
    kernel("GetVolumePathNamesForVolumeNameW", GetVolumePathNamesForVolumeNameW);
    kernel("GetLogicalDrives", GetLogicalDrives);
    kernel("GetDriveTypeW", GetDriveTypeW);
    kernel("GetDiskFreeSpaceW", GetDiskFreeSpaceW);
    kernel("GetDiskFreeSpaceExW", GetDiskFreeSpaceExW);
    kernel("GetVolumeInformationW", GetVolumeInformationW);
    kernel("FindFirstVolumeW", FindFirstVolumeW);
    kernel("FindNextVolumeW", FindNextVolumeW);
    kernel("FindVolumeClose", FindVolumeClose);
    kernel("CreateFileW", CreateFileW);
    kernel("CloseHandle", CloseHandle);
    kernel("DeviceIoControl", DeviceIoControl);
    kernel("GetFirmwareType", GetFirmwareType);
    kernel("GetFirmwareEnvironmentVariableW", GetFirmwareEnvironmentVariableW);

    const auto native = [&](const char* name, auto& function) { Bind(find, L"ntdll.dll", name, function); };
    native("ZwOpenDirectoryObject", ZwOpenDirectoryObject);
    native("ZwQueryDirectoryObject", ZwQueryDirectoryObject);
    native("ZwClose", ZwClose);
}

}  // namespace recorder

#include "machine/description/control_codes.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace machine {
namespace {

#define ORVANE_NAMED_CODE(code) \
    { code, #code }
constexpr NamedCode kCodes[] = {
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_DRIVE_GEOMETRY),
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX),
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_DRIVE_LAYOUT),
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_DRIVE_LAYOUT_EX),
    ORVANE_NAMED_CODE(IOCTL_DISK_SET_DRIVE_LAYOUT_EX),
    ORVANE_NAMED_CODE(IOCTL_DISK_CREATE_DISK),
    ORVANE_NAMED_CODE(IOCTL_DISK_DELETE_DRIVE_LAYOUT),
    ORVANE_NAMED_CODE(IOCTL_DISK_UPDATE_PROPERTIES),
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_LENGTH_INFO),
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_PARTITION_INFO),
    ORVANE_NAMED_CODE(IOCTL_DISK_GET_PARTITION_INFO_EX),
    ORVANE_NAMED_CODE(IOCTL_DISK_IS_WRITABLE),
    ORVANE_NAMED_CODE(IOCTL_STORAGE_GET_DEVICE_NUMBER),
    ORVANE_NAMED_CODE(IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS),
};
#undef ORVANE_NAMED_CODE

constexpr std::string_view kControl = "DeviceIoControl";

constexpr unsigned kDisk = static_cast<unsigned>(CallScope::kDisk);
constexpr unsigned kVolume = static_cast<unsigned>(CallScope::kVolume);
constexpr unsigned kDirectory = static_cast<unsigned>(CallScope::kDirectory);
constexpr unsigned kWmiClass = static_cast<unsigned>(CallScope::kWmiClass);
constexpr unsigned kDosDevice = static_cast<unsigned>(CallScope::kDosDevice);

constexpr NamedCall kCalls[] = {
    {"CloseHandle", kDisk | kVolume},
    {"CreateFileW", kDisk | kVolume, true},
    {kControl, kDisk | kVolume, true},
    {"FindFirstVolumeW", kVolume},
    {"FindNextVolumeW", kVolume},
    {"FindVolumeClose", 0},
    {"FlushFileBuffers", kDisk | kVolume, true},
    {"GetDiskFreeSpaceExW", kVolume, true},
    {"GetDiskFreeSpaceW", kVolume, true},
    {"GetDriveTypeW", kVolume},
    {"GetFirmwareEnvironmentVariableW", 0},
    {"GetFirmwareType", 0},
    {"GetLogicalDrives", 0},
    {"GetProcAddress", 0},
    {"GetVolumeInformationW", kVolume, true},
    {"GetVolumeNameForVolumeMountPointW", kVolume},
    {"GetVolumePathNameW", kVolume},
    {"GetVolumePathNamesForVolumeNameW", kVolume},
    {"QueryDosDeviceW", kDisk | kVolume | kDosDevice},
    {"WriteFile", kDisk | kVolume, true},
    {"ZwClose", kDirectory},
    {"ZwOpenDirectoryObject", kDirectory, true},
    {"ZwQueryDirectoryObject", kDirectory, true},
    {"IClassFactory::CreateInstance", 0},
    {"IClientSecurity::SetBlanket", 0},
    {"IEnumWbemClassObject::Clone", kWmiClass},
    {"IEnumWbemClassObject::Next", kWmiClass, true},
    {"IEnumWbemClassObject::Reset", kWmiClass},
    {"IEnumWbemClassObject::Skip", kWmiClass, true},
    {"IWbemClassObject::Get", kWmiClass},
    {"IWbemLocator::ConnectServer", 0},
    {"IWbemServices::ExecQuery", kWmiClass, true},
};

bool IsControlKind(const std::string& kind) {
    return std::any_of(std::begin(kCodes), std::end(kCodes),
                       [&](const NamedCode& named) { return named.name == kind; }) ||
           (kind.size() == 10 && kind.compare(0, 2, "0x") == 0);
}

}  // namespace

std::span<const NamedCode> NamedCodes() {
    return kCodes;
}

std::span<const NamedCall> NamedCalls() {
    return kCalls;
}

CallFamily FamilyOf(std::string_view name) {
    if (name.find("::") != std::string_view::npos) {
        return CallFamily::kCom;
    }
    return name.compare(0, 2, "Zw") == 0 ? CallFamily::kNative : CallFamily::kWin32;
}

std::uint32_t FaultCodes::For(CallFamily family) const noexcept {
    switch (family) {
        case CallFamily::kNative:
            return native;
        case CallFamily::kCom:
            return com;
        case CallFamily::kWin32:
            break;
    }
    return win32;
}

std::string ControlName(DWORD code) {
    const auto* found = std::find_if(std::begin(kCodes), std::end(kCodes),
                                     [code](const NamedCode& named) { return named.code == code; });
    if (found != std::end(kCodes)) {
        return std::string(found->name);
    }
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%08lX", code);
    return text.data();
}

std::vector<std::string> BlockingCalls(CallScope scope) {
    std::vector<std::string> calls;
    for (const NamedCall& call : kCalls) {
        if (call.blocks && (call.scopes & static_cast<unsigned>(scope)) != 0) {
            calls.emplace_back(call.name);
        }
    }
    return calls;
}

std::uint32_t BlockedCode(const std::string& name) {
    constexpr FaultCodes kTimedOut = {ERROR_SEM_TIMEOUT, 0xC00000B5, 0x80070079};
    return kTimedOut.For(FamilyOf(name));
}

bool IsCallOf(CallScope scope, const std::string& name) {
    const std::size_t prefix = kControl.size() + 1;
    const bool with_kind = name.compare(0, prefix, std::string(kControl) + ":") == 0;
    if (with_kind && !IsControlKind(name.substr(prefix))) {
        return false;
    }
    const std::string_view call = with_kind ? kControl : std::string_view(name);
    const auto* found = std::find_if(std::begin(kCalls), std::end(kCalls),
                                     [&](const NamedCall& named) { return named.name == call; });
    return found != std::end(kCalls) &&
           (scope == CallScope::kMachine || (found->scopes & static_cast<unsigned>(scope)) != 0);
}

}  // namespace machine

#include "machine/recorder/redact/known_names.h"

#include "machine/description/text.h"

#include <algorithm>
#include <span>

namespace recorder {
namespace {

constexpr std::wstring_view kDeviceNames[] = {
    L"",
    L"?",
    L"??",
    L".",
    L"GLOBAL??",
    L"GLOBALROOT",
    L"GLOBAL",
    L"Device",
    L"DosDevices",
    L"Volume",
    L"NUL",
    L"Null",
    L"CON",
    L"CONIN$",
    L"CONOUT$",
    L"AUX",
    L"PRN",
    L"PIPE",
    L"MAILSLOT",
    L"UNC",
    L"Mup",
    L"ConDrv",
    L"Console",
    L"NamedPipe",
    L"Beep",
    L"Afd",
    L"Ndis",
    L"Tcp",
    L"Tcp6",
    L"Udp",
    L"Udp6",
    L"Ip",
    L"Ip6",
    L"RawIp",
    L"RawIp6",
    L"NetBT",
    L"Http",
    L"Nsi",
    L"KsecDD",
    L"CNG",
    L"FltMgr",
    L"FltMgrMsg",
    L"VolMgrControl",
    L"MountPointManager",
    L"MountMgr",
    L"PartmgrControl",
    L"HarddiskDmVolumes",
    L"PhysicalMemory",
    L"LanmanRedirector",
    L"LanmanServer",
    L"LanmanDatagramReceiver",
    L"MRxDAV",
    L"WebDavRedirector",
    L"VMBus",
    L"CdFs",
    L"Ntfs",
    L"Fat",
    L"Raw",
    L"UdfsCdRom",
    L"UdfsDisk",
    L"ExFatRecognizer",
    L"FatCdRomRecognizer",
    L"FatDiskRecognizer",
    L"CdfsRecognizer",
    L"Psched",
    L"SrvAdmin",
    L"SrvNet",
    L"Srv2",
    L"VolumesSafeForWriteAccess",
    L"WMIDataDevice",
    L"WMIAdminDevice",
    L"RdpDrDvMgr",
    L"TermDD",
    L"Video",
    L"DfsClient",
    L"SysCache",
    L"ClusDisk",
};

// Followed by a decimal number.
constexpr std::wstring_view kNumberedDevices[] = {
    L"Harddisk",      L"HarddiskVolume", L"HarddiskVolumeShadowCopy",
    L"PhysicalDrive", L"Partition",      L"DR",
    L"Volume",        L"CdRom",          L"Floppy",
    L"Tape",          L"Scsi",           L"ScsiPort",
    L"RaidPort",      L"Changer",        L"COM",
    L"LPT",           L"Serial",         L"Parallel",
    L"Video",         L"DISPLAY",        L"Disk",
    L"IdePort",       L"Space",
};

constexpr std::wstring_view kFolders[] = {
    L"",      L"Windows", L"WINNT",   L"System32", L"SysWOW64",    L"config",        L"systemprofile",
    L"Users", L"Public",  L"Default", L"AppData",  L"Local",       L"LocalLow",      L"Roaming",
    L"Temp",  L"Boot",    L"EFI",     L"Recovery", L"ProgramData", L"Program Files", L"Program Files (x86)",
};

constexpr std::wstring_view kPartitionNames[] = {
    L"",
    L"Basic data partition",
    L"EFI system partition",
    L"Microsoft reserved partition",
    L"LDM metadata partition",
    L"LDM data partition",
};

bool IsAmong(std::span<const std::wstring_view> names, std::wstring_view name) {
    return std::any_of(names.begin(), names.end(),
                       [&](std::wstring_view known) { return machine::EqualNames(known, name); });
}

bool IsDigit(wchar_t unit) {
    return unit >= L'0' && unit <= L'9';
}

bool IsDrive(std::wstring_view part) {
    return part.size() == 2 && machine::DriveNumber(part);
}

// The name that Windows gives to a device without one: "00000087".
bool IsMadeByNumber(std::wstring_view part) {
    constexpr std::wstring_view kHexadecimal = L"0123456789abcdefABCDEF";
    constexpr std::size_t kSize = 8;
    return part.size() == kSize && part.starts_with(L"0000") &&
           part.find_first_not_of(kHexadecimal) == std::wstring_view::npos;
}

}  // namespace

bool IsKnownDeviceName(std::wstring_view part) {
    const auto digits =
        static_cast<std::size_t>(std::find_if_not(part.rbegin(), part.rend(), IsDigit) - part.rbegin());
    const std::wstring_view name = part.substr(0, part.size() - digits);
    return IsDrive(part) || IsMadeByNumber(part) ||
           IsAmong(digits == 0 ? std::span<const std::wstring_view>(kDeviceNames) : kNumberedDevices, name) ||
           IsAmong(kDeviceNames, part);
}

bool IsKnownFolder(std::wstring_view part) {
    return IsAmong(kFolders, part);
}

bool IsKnownPartitionName(std::wstring_view name) {
    return IsAmong(kPartitionNames, name);
}

}  // namespace recorder

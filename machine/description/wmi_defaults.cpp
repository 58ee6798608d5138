#include "machine/description/wmi_defaults.h"

#include "machine/description/text.h"

#include <oaidl.h>

#include <algorithm>
#include <string>
#include <utility>

namespace machine {
namespace {

WmiValue Text(std::wstring text) {
    WmiValue value;
    value.type = VT_BSTR;
    value.text = std::move(text);
    return value;
}

WmiValue Number(std::uint64_t number, VARTYPE type = VT_I4) {
    WmiValue value;
    value.type = type;
    value.number = static_cast<std::int64_t>(number);
    return value;
}

// WMI returns 64-bit numbers as strings.
WmiValue LongNumber(std::uint64_t number) {
    return Text(std::to_wstring(number));
}

WmiValue Flag(bool flag) {
    return Number(flag ? 1 : 0, VT_BOOL);
}

WmiValue Null() {
    return {};
}

WmiInstance DiskDrive(const Disk& disk) {
    const std::wstring number = std::to_wstring(disk.index);
    const std::wstring name = L"\\\\.\\PHYSICALDRIVE" + number;
    const std::uint64_t tracks = disk.cylinders * disk.tracks_per_cylinder;
    const std::uint64_t sectors = tracks * disk.sectors_per_track;
    const auto used = std::count_if(disk.partitions.begin(), disk.partitions.end(),
                                    [](const Partition& partition) { return partition.number != 0; });
    const bool has_signature = disk.style == PARTITION_STYLE_MBR && !disk.blank;
    WmiInstance instance = {
        {L"BytesPerSector", Number(disk.bytes_per_sector)},
        {L"Caption", Text(L"Generic Disk")},
        {L"ConfigManagerErrorCode", Number(0)},
        {L"ConfigManagerUserConfig", Flag(false)},
        {L"CreationClassName", Text(L"Win32_DiskDrive")},
        {L"Description", Text(L"Disk drive")},
        {L"DeviceID", Text(name)},
        {L"FirmwareRevision", Text(L"1.00")},
        {L"Index", Number(disk.index)},
        {L"InstallDate", Null()},
        {L"InterfaceType", Text(L"SCSI")},
        {L"Manufacturer", Text(L"(Standard disk drives)")},
        {L"MediaLoaded", Flag(true)},
        {L"MediaType", Text(disk.media_type == 11 ? L"Removable Media" : L"Fixed hard disk media")},
        {L"Model", Text(L"Generic Disk")},
        {L"Name", Text(name)},
        {L"Partitions", Number(static_cast<std::uint64_t>(used))},
        {L"PNPDeviceID", Text(L"SCSI\\DISK&VEN_GENERIC&PROD_DISK\\4&0&0&0000" + number)},
        {L"SCSIBus", Number(0)},
        {L"SCSILogicalUnit", Number(0)},
        {L"SCSIPort", Number(0)},
        {L"SCSITargetId", Number(disk.index, VT_I4)},
        {L"SectorsPerTrack", Number(disk.sectors_per_track)},
        {L"SerialNumber", Text(L"0000-0000-" + number)},
        {L"Signature", has_signature ? Number(disk.signature, VT_UI4) : Null()},
        {L"Size", LongNumber(sectors * disk.bytes_per_sector)},
        {L"Status", Text(L"OK")},
        {L"SystemCreationClassName", Text(L"Win32_ComputerSystem")},
        {L"TotalCylinders", LongNumber(disk.cylinders)},
        {L"TotalHeads", Number(disk.tracks_per_cylinder)},
        {L"TotalSectors", LongNumber(sectors)},
        {L"TotalTracks", LongNumber(tracks)},
        {L"TracksPerCylinder", Number(disk.tracks_per_cylinder)},
    };
    // WMI returns unsigned 32-bit numbers as VT_I4.
    for (WmiProperty& property : instance) {
        if (property.value.type == VT_UI4) {
            property.value.type = VT_I4;
            property.value.number =
                static_cast<std::int32_t>(static_cast<std::uint32_t>(property.value.number));
        }
    }
    for (const WmiProperty& property : disk.wmi) {
        SetProperty(instance, property);
        if (property.name == L"Model") {
            SetProperty(instance, {L"Caption", property.value});
        }
    }
    return instance;
}

const Volume* VolumeAt(const Description& description, const std::wstring& mount_point) {
    const auto volume =
        std::find_if(description.volumes.begin(), description.volumes.end(), [&](const Volume& candidate) {
            return std::any_of(candidate.mount_points.begin(), candidate.mount_points.end(),
                               [&](const std::wstring& path) { return EqualNames(path, mount_point); });
        });
    return volume == description.volumes.end() ? nullptr : &*volume;
}

bool StartsTheMachine(const Volume& volume) {
    static const GUID efi_system = *ParseGuid("{c12a7328-f81f-11d2-ba4b-00a0c93ec93b}");
    return volume.partition &&
           (volume.partition->active || IsEqualGUID(volume.partition->gpt_type, efi_system));
}

struct SystemPlaces {
    std::wstring boot_device;    // device from which the machine boots
    std::wstring system_device;  // device that holds the Windows installation
    std::wstring partition;      // the same as \Device\HarddiskN\PartitionM
    std::wstring drive;
};

SystemPlaces PlacesOf(const Description& description) {
    SystemPlaces places;
    places.drive = description.current_drive.substr(0, 2);
    places.partition = L"\\Device\\Harddisk0\\Partition1";
    if (const Volume* system = VolumeAt(description, description.current_drive)) {
        places.system_device = system->device;
        if (system->partition && system->extents && !system->extents->empty()) {
            places.partition = L"\\Device\\Harddisk" + std::to_wstring(system->extents->front().disk) +
                               L"\\Partition" + std::to_wstring(system->partition->number);
        }
    }
    const auto boot = std::find_if(description.volumes.begin(), description.volumes.end(), StartsTheMachine);
    places.boot_device = boot == description.volumes.end() ? places.system_device : boot->device;
    return places;
}

WmiInstance Processor() {
    return {
        {L"AddressWidth", Number(64)},
        {L"Architecture", Number(9)},
        {L"Availability", Number(3)},
        {L"Caption", Text(L"x64 Family 25 Model 33 Stepping 2")},
        {L"CpuStatus", Number(1)},
        {L"CurrentClockSpeed", Number(3600)},
        {L"DataWidth", Number(64)},
        {L"Description", Text(L"x64 Family 25 Model 33 Stepping 2")},
        {L"DeviceID", Text(L"CPU0")},
        {L"Family", Number(107)},
        {L"L2CacheSize", Number(4096)},
        {L"Manufacturer", Text(L"GenuineExample")},
        {L"MaxClockSpeed", Number(3600)},
        {L"Name", Text(L"Example Processor 8-Core @ 3.60GHz")},
        {L"NumberOfCores", Number(8)},
        {L"NumberOfLogicalProcessors", Number(16)},
        {L"ProcessorId", Text(L"178BFBFF00A20F12")},
        {L"ProcessorType", Number(3)},
        {L"Role", Text(L"CPU")},
        {L"Status", Text(L"OK")},
        {L"UniqueId", Null()},
    };
}

WmiInstance OperatingSystem(const SystemPlaces& places) {
    const std::wstring windows = places.drive + L"\\Windows";
    return {
        {L"BootDevice", Text(places.boot_device)},
        {L"BuildNumber", Text(L"22631")},
        {L"BuildType", Text(L"Multiprocessor Free")},
        {L"Caption", Text(L"Microsoft Windows 11 Pro")},
        {L"CodeSet", Text(L"1252")},
        {L"CountryCode", Text(L"1")},
        {L"CSDVersion", Null()},
        {L"CSName", Text(L"WORKSTATION")},
        {L"CurrentTimeZone", Number(60, VT_I2)},
        {L"Description", Text(L"")},
        {L"Locale", Text(L"0409")},
        {L"Manufacturer", Text(L"Microsoft Corporation")},
        {L"Name", Text(L"Microsoft Windows 11 Pro|" + windows + L"|" + places.partition)},
        {L"Organization", Text(L"")},
        {L"OSArchitecture", Text(L"64-bit")},
        {L"OSLanguage", Number(1033)},
        {L"OSProductSuite", Number(256)},
        {L"OSType", Number(18)},
        {L"Primary", Flag(true)},
        {L"ProductType", Number(1)},
        {L"RegisteredUser", Text(L"Administrator")},
        {L"SerialNumber", Text(L"00000-00000-00000-AAAAA")},
        {L"Status", Text(L"OK")},
        {L"SystemDevice", Text(places.system_device)},
        {L"SystemDirectory", Text(windows + L"\\system32")},
        {L"SystemDrive", Text(places.drive)},
        {L"Version", Text(L"10.0.22631")},
        {L"WindowsDirectory", Text(windows)},
    };
}

WmiInstance ComputerSystem() {
    return {
        {L"BootupState", Text(L"Normal boot")},
        {L"Caption", Text(L"WORKSTATION")},
        {L"CurrentTimeZone", Number(60, VT_I2)},
        {L"Description", Text(L"AT/AT COMPATIBLE")},
        {L"DNSHostName", Text(L"WORKSTATION")},
        {L"Domain", Text(L"WORKGROUP")},
        {L"DomainRole", Number(0)},
        {L"Manufacturer", Text(L"Example Computers")},
        {L"Model", Text(L"Workstation")},
        {L"Name", Text(L"WORKSTATION")},
        {L"NumberOfLogicalProcessors", Number(16)},
        {L"NumberOfProcessors", Number(1)},
        {L"PartOfDomain", Flag(false)},
        {L"Status", Text(L"OK")},
        {L"SystemStartupOptions", Null()},
        {L"SystemType", Text(L"x64-based PC")},
        {L"TotalPhysicalMemory", Text(L"17060651008")},
        {L"UserName", Text(L"WORKSTATION\\Administrator")},
        {L"Workgroup", Text(L"WORKGROUP")},
    };
}

std::wstring LastDrive(const Description& description) {
    std::wstring last = description.current_drive.substr(0, 2);
    for (const Volume& volume : description.volumes) {
        for (const std::wstring& path : volume.mount_points) {
            last = path.size() == 3 ? std::max(last, path.substr(0, 2)) : last;
        }
    }
    return last;
}

WmiInstance BootConfiguration(const SystemPlaces& places, const std::wstring& last_drive) {
    const std::wstring windows = places.drive + L"\\Windows";
    const std::wstring temporary = windows + L"\\system32\\config\\systemprofile\\AppData\\Local\\Temp";
    return {
        {L"BootDirectory", Text(windows)},      {L"Caption", Text(places.partition)},
        {L"ConfigurationPath", Text(windows)},  {L"Description", Text(places.partition)},
        {L"LastDrive", Text(last_drive)},       {L"Name", Text(L"BootConfiguration")},
        {L"ScratchDirectory", Text(temporary)}, {L"SettingID", Null()},
        {L"TempDirectory", Text(temporary)},
    };
}

}  // namespace

void AddDerivedWmi(Description& description) {
    WmiClass drives;
    for (const Disk& disk : description.disks) {
        if (!disk.hidden_from_wmi) {
            drives.instances.push_back(DiskDrive(disk));
        }
    }
    const SystemPlaces places = PlacesOf(description);
    description.wmi[WmiClassKey(L"Win32_DiskDrive")] = std::move(drives);
    description.wmi[WmiClassKey(L"Win32_Processor")] = {{Processor()}, {}};
    description.wmi[WmiClassKey(L"Win32_OperatingSystem")] = {{OperatingSystem(places)}, {}};
    description.wmi[WmiClassKey(L"Win32_ComputerSystem")] = {{ComputerSystem()}, {}};
    description.wmi[WmiClassKey(L"Win32_BootConfiguration")] = {
        {BootConfiguration(places, LastDrive(description))}, {}};
}

std::wstring WmiClassKey(const std::wstring& name) {
    return Folded(name);
}

void SetProperty(WmiInstance& instance, const WmiProperty& property) {
    for (WmiProperty& own : instance) {
        if (EqualNames(own.name, property.name)) {
            own.value = property.value;
            return;
        }
    }
    instance.push_back(property);
}

const WmiProperty* FindProperty(const WmiInstance& instance, const std::wstring& name) {
    const auto found = std::find_if(instance.begin(), instance.end(), [&](const WmiProperty& property) {
        return EqualNames(property.name, name);
    });
    return found == instance.end() ? nullptr : &*found;
}

}  // namespace machine

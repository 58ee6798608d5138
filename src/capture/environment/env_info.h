#pragma once

#include "common/record/rows.h"

#include <cstdint>
#include <string>
#include <vector>

// The environment record: a description of the machine in memory. The members have the names of the
// document's elements. A member that its collector could not fill keeps its initial value. One thread fills
// the record once and then writes it.

struct ProcessorInfo {
    std::int32_t Architecture = 0;
    std::int32_t CurrentClockSpeed = 0;  // MHz
    std::int32_t Family = 0;
    std::wstring Manufacturer;
    std::int32_t MaxClockSpeed = 0;  // MHz
    std::int32_t ProcessorId = 0;    // a string in WMI: compatibility C72
    std::int32_t ProcessorType = 0;
    std::int32_t UniqueId = 0;  // compatibility C72
};

struct ComputerSystemInfo {
    std::int32_t CurrentTimeZone = 0;  // minutes from UTC
    std::wstring Description;
    std::wstring Domain;
    std::wstring Manufacturer;
    std::wstring Model;
    std::uint32_t NumberOfProcessors = 0;
    std::vector<std::wstring> SystemStartupOptions;
    std::wstring SystemType;
    std::wstring TotalPhysicalMemory;  // bytes, the decimal text that WMI returns
    std::wstring UserName;
};

// "Boot" and "system" have the opposite of their meaning in Windows: compatibility C96
struct OSInfo {
    std::wstring BootDevice;  // NT device name of the volume that the system started from
    std::wstring CountryCode;
    std::wstring CSDVersion;
    std::wstring CSName;
    std::int32_t CurrentTimeZone = 0;  // minutes from UTC
    std::wstring Description;
    std::wstring Locale;
    std::wstring Manufacturer;
    std::wstring Organization;
    std::int32_t OSLanguage = 0;
    std::int32_t OSType = 0;
    std::uint32_t ProductType = 0;
    std::wstring SerialNumber;
    std::wstring SystemDevice;  // NT device name of the volume that holds the operating system
    std::wstring SystemDirectory;
    std::wstring SystemDrive;
    std::wstring Version;
    std::wstring Name;  // the caption: compatibility C76
    std::wstring WindowsDirectory;
    std::uint32_t OSArchitecture = 0;
};

struct BootConfigurationInfo {
    std::wstring BootDirectory;
    std::wstring ConfigurationPath;
    std::wstring Description;
    std::wstring LastDrive;
    std::wstring Name;
    std::wstring ScratchDirectory;
    std::uint32_t SettingID = 0;  // a string in WMI: compatibility C72
    std::wstring TempDirectory;
};

// The first part of every version of the record.
struct SystemSections {
    std::uint32_t Version = 0;
    std::wstring DllVersion;
    BootConfigurationInfo BootConfiguration;
    ComputerSystemInfo ComputerSystem;
    OSInfo OS;
    ProcessorInfo Processor;
};

// Identifies the boot volume, the system volume and the operating system, and holds the boot options.
struct BootConfig {
    std::wstring m_guidSystemVolume;
    std::wstring m_guidBootVolume;
    std::wstring m_strBootFolder;
    std::wstring m_strBootOptions;
    std::wstring m_strOS;
    std::uint32_t m_OSArchitecture = 0;
    std::wstring numeric_version_string;
    std::uint32_t product_type = 0;
};

struct DriveLetterEntry {
    std::wstring m_guidVolume;
    std::wstring m_strDrive;  // may be empty
};

// The record of formats 1 and 2, with the flat tables.
struct EnvInfo : SystemSections {
    std::vector<DiskRow> DiskDrives;
    // Always empty: compatibility C95
    std::wstring BootIniContents;
    struct BootConfig BootConfig;
    std::vector<DriveLetterEntry> DriveLetterTable;
    std::vector<::Volume> VolumeTable;
};

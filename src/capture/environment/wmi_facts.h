#pragma once

#include "capture/environment/env_info.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

// The properties that are read from WMI, one table per class. The collectors, the document and the dump of
// the system information iterate over these tables.

// How a property is read. Only numbers can be read in more than one way.
enum class WmiReading {
    kOptional,     // numbers with CWmi::GetLowInteger
    kMandatory,    // the same; the collector fails if the property cannot be read
    kWholeNumber,  // numbers with CWmi::Get
    kConstant64,   // not read, the value is 64: compatibility C77
};

// The position of a property in its section of the document, from 1, and its element. 0: not in the document.
struct PlaceInDocument {
    int place = 0;
    const char* element = nullptr;
};

// The position of a property in the dump of its section, from 1, and the format of its line. 0: not in the
// dump.
struct PlaceInDump {
    int place = 0;
    const wchar_t* line = nullptr;
};

// One property. The collectors read the properties in the order of the rows.
template <class Section>
struct WmiFact {
    const wchar_t* property = nullptr;
    std::variant<std::wstring Section::*, std::int32_t Section::*, std::uint32_t Section::*,
                 std::vector<std::wstring> Section::*>
        member;
    PlaceInDocument document;
    PlaceInDump dump;
    WmiReading reading = WmiReading::kOptional;
    const wchar_t* failure = nullptr;  // logged if a mandatory property cannot be read
};

template <class Section>
struct WmiClass {
    const wchar_t* query;
    const wchar_t* not_initialized;    // logged if WMI cannot be queried
    const wchar_t* find_first_failed;  // logged if no object can be fetched
    std::span<const WmiFact<Section>> facts;
};

// Calls `visit` for each property in the document (`where` is &WmiFact<Section>::document) or in the dump
// (`where` is &WmiFact<Section>::dump), in the order of that output.
template <class Section, class Place, class Visit>
constexpr void WalkInOrder(const WmiClass<Section>& wmi_class, Place WmiFact<Section>::*where, Visit visit) {
    for (int place = 1;; ++place) {
        const auto found =
            std::find_if(wmi_class.facts.begin(), wmi_class.facts.end(),
                         [&](const WmiFact<Section>& fact) { return (fact.*where).place == place; });
        if (found == wmi_class.facts.end()) {
            return;
        }
        visit(*found);
    }
}

// Whether the positions are 1, 2, 3 and so on, without gaps and without duplicates.
template <class Section, class Place>
constexpr bool PlacesAreWhole(const WmiClass<Section>& wmi_class, Place WmiFact<Section>::*where) {
    int walked = 0;
    WalkInOrder(wmi_class, where, [&](const WmiFact<Section>&) { ++walked; });
    return walked == std::count_if(wmi_class.facts.begin(), wmi_class.facts.end(),
                                   [&](const WmiFact<Section>& fact) { return (fact.*where).place != 0; });
}

template <class Section>
constexpr bool PlacesAreWhole(const WmiClass<Section>& wmi_class) {
    return PlacesAreWhole(wmi_class, &WmiFact<Section>::document) &&
           PlacesAreWhole(wmi_class, &WmiFact<Section>::dump);
}

// clang-format off

// Columns: property, member, position and element in the document, position and line in the dump, how the
// property is read, failure line.

inline constexpr WmiFact<ProcessorInfo> kProcessorFacts[] = {
    {L"Manufacturer", &ProcessorInfo::Manufacturer, {4, "Manufacturer"}, {4, L"Manufacturer: %s"}},
    {L"Architecture", &ProcessorInfo::Architecture, {1, "Architecture"}, {1, L"Architecture: %d"}},
    {L"CurrentClockSpeed", &ProcessorInfo::CurrentClockSpeed, {2, "CurrentClockSpeed"}, {2, L"CurrentClockSpeed: %d"}},
    {L"Family", &ProcessorInfo::Family, {3, "Family"}, {3, L"Family: %d"}},
    {L"MaxClockSpeed", &ProcessorInfo::MaxClockSpeed, {5, "MaxClockSpeed"}, {5, L"MaxClockSpeed: %d"}},
    {L"ProcessorId", &ProcessorInfo::ProcessorId, {6, "ProcessorId"}, {6, L"ProcessorId: %d"}},
    {L"ProcessorType", &ProcessorInfo::ProcessorType, {7, "ProcessorType"}, {7, L"ProcessorType: %d"}},
    {L"UniqueId", &ProcessorInfo::UniqueId, {8, "UniqueId"}, {8, L"UniqueId: %d"}},
};

inline constexpr WmiFact<OSInfo> kOSFacts[] = {
    {L"BootDevice", &OSInfo::BootDevice, {1, "BootDevice"}, {1, L"BootDevice: %s"},
     WmiReading::kMandatory, L"GetOSInfo GetBootDevice failed"},
    {nullptr, &OSInfo::OSArchitecture, {12, "OSArchitecture"}, {13, L"OSArchitecture: %u"}, WmiReading::kConstant64},
    {L"CountryCode", &OSInfo::CountryCode, {2, "CountryCode"}, {2, L"CountryCode: %s"}},
    {L"CSDVersion", &OSInfo::CSDVersion, {3, "CSDVersion"}, {3, L"CSDVersion: %s"}},
    {L"CSName", &OSInfo::CSName, {4, "CSName"}, {4, L"CSName: %s"}},
    {L"CurrentTimeZone", &OSInfo::CurrentTimeZone, {5, "CurrentTimeZone"}, {5, L"CurrentTimeZone: %d"}},
    {L"Description", &OSInfo::Description, {6, "Description"}, {6, L"Description: %s"}},
    {L"Locale", &OSInfo::Locale, {7, "Locale"}, {7, L"Locale: %s"}},
    {L"Manufacturer", &OSInfo::Manufacturer, {8, "Manufacturer"}, {8, L"Manufacturer: %s"}},
    {L"Organization", &OSInfo::Organization, {9, "Organization"}, {9, L"Organization: %s"}},
    {L"OSLanguage", &OSInfo::OSLanguage, {10, "OSLanguage"}, {10, L"OSLanguage: %d"}},
    {L"OSType", &OSInfo::OSType, {11, "OSType"}, {11, L"OSType: %d"}},
    {L"SerialNumber", &OSInfo::SerialNumber, {13, "SerialNumber"}, {14, L"SerialNumber: %s"}},
    {L"SystemDevice", &OSInfo::SystemDevice, {14, "SystemDevice"}, {15, L"SystemDevice: %s"},
     WmiReading::kMandatory, L"GetOSInfo GetSystemDevice failed"},
    {L"SystemDirectory", &OSInfo::SystemDirectory, {15, "SystemDirectory"}, {16, L"SystemDirectory: %s"}},
    {L"SystemDrive", &OSInfo::SystemDrive, {16, "SystemDrive"}, {17, L"SystemDrive: %s"}},
    {L"Version", &OSInfo::Version, {17, "Version"}, {18, L"Version: %s"}},
    // Not in the document: compatibility C63
    {L"ProductType", &OSInfo::ProductType, {}, {12, L"Product Type: %d"}, WmiReading::kWholeNumber},
    // Not the property "Name": compatibility C76
    {L"Caption", &OSInfo::Name, {18, "Name"}, {19, L"Name: %s"}},
    {L"WindowsDirectory", &OSInfo::WindowsDirectory, {19, "WindowsDirectory"}, {20, L"WindowsDirectory: %s"}},
    {L"Description", &OSInfo::Description, {}, {}},  // read a second time: compatibility C124
};

inline constexpr WmiFact<ComputerSystemInfo> kComputerSystemFacts[] = {
    {L"CurrentTimeZone", &ComputerSystemInfo::CurrentTimeZone, {1, "CurrentTimeZone"}, {1, L"CurrentTimeZone: %d"}},
    {L"Description", &ComputerSystemInfo::Description, {2, "Description"}, {2, L"Description: %s"}},
    {L"Domain", &ComputerSystemInfo::Domain, {3, "Domain"}, {3, L"Domain: %s"}},
    {L"Manufacturer", &ComputerSystemInfo::Manufacturer, {4, "Manufacturer"}, {4, L"Manufacturer: %s"}},
    {L"Model", &ComputerSystemInfo::Model, {5, "Model"}, {5, L"Model: %s"}},
    {L"NumberOfProcessors", &ComputerSystemInfo::NumberOfProcessors, {6, "NumberOfProcessors"}, {6, L"NumberOfProcessors: %d"},
     WmiReading::kMandatory, L"GetComputerSystem GetNumberOfProcessors failed"},
    {L"SystemStartupOptions", &ComputerSystemInfo::SystemStartupOptions, {7, "SystemStartupOptions"}, {7, L"SystemStartupOptions: size(%d)"}},
    {L"SystemType", &ComputerSystemInfo::SystemType, {8, "SystemType"}, {8, L"SystemType: %s"}},
    {L"TotalPhysicalMemory", &ComputerSystemInfo::TotalPhysicalMemory, {9, "TotalPhysicalMemory"}, {9, L"TotalPhysicalMemory: %s"}},
    {L"UserName", &ComputerSystemInfo::UserName, {10, "UserName"}, {10, L"UserName: %s"}},
};

inline constexpr WmiFact<BootConfigurationInfo> kBootConfigurationFacts[] = {
    {L"BootDirectory", &BootConfigurationInfo::BootDirectory, {1, "BootDirectory"}, {2, L"BootDirectory: %s"},
     WmiReading::kMandatory, L"GetBootConfiguration GetBootDirectory failed"},
    {L"ConfigurationPath", &BootConfigurationInfo::ConfigurationPath, {2, "ConfigurationPath"}, {3, L"ConfigurationPath: %s"}},
    {L"Description", &BootConfigurationInfo::Description, {3, "Description"}, {4, L"Description: %s"}},
    {L"LastDrive", &BootConfigurationInfo::LastDrive, {4, "LastDrive"}, {5, L"LastDrive: %s"}},
    {L"Name", &BootConfigurationInfo::Name, {5, "Name"}, {1, L"Name: %s"}},
    {L"ScratchDirectory", &BootConfigurationInfo::ScratchDirectory, {6, "ScratchDirectory"}, {7, L"ScratchDirectory: %s"}},
    {L"SettingID", &BootConfigurationInfo::SettingID, {7, "SettingID"}, {8, L"SettingID: %d"}, WmiReading::kWholeNumber},
    {L"TempDirectory", &BootConfigurationInfo::TempDirectory, {8, "TempDirectory"}, {6, L"TempDirectory: %s"}},
};

// clang-format on

inline constexpr WmiClass<ProcessorInfo> kProcessorClass = {
    L"Select * from Win32_Processor",
    L"GetProcessorInfo wmi not initialized",
    L"GetProcessorInfo FindFirstObject failed",
    kProcessorFacts,
};

inline constexpr WmiClass<OSInfo> kOSClass = {
    L"Select * from Win32_OperatingSystem",
    L"GetOSInfo wmi not initialized",
    L"GetOSInfo FindFirstObject failed",
    kOSFacts,
};

inline constexpr WmiClass<ComputerSystemInfo> kComputerSystemClass = {
    L"Select * from Win32_ComputerSystem",
    L"GetComputerSystem wmi not initialized",
    L"GetComputerSystem FindFirstObject failed",
    kComputerSystemFacts,
};

inline constexpr WmiClass<BootConfigurationInfo> kBootConfigurationClass = {
    L"Select * from Win32_BootConfiguration",
    L"GetBootConfiguration wmi not initialized",
    L"GetBootConfiguration FindFirstObject failed",
    kBootConfigurationFacts,
};

static_assert(PlacesAreWhole(kProcessorClass) && PlacesAreWhole(kOSClass) &&
              PlacesAreWhole(kComputerSystemClass) && PlacesAreWhole(kBootConfigurationClass));

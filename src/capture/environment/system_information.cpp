#include "capture/environment/system_information.h"

#include "common/logger/orvane_logger.h"
#include "common/platform/com_enabler.h"
#include "common/platform/wmi.h"

#include <cstddef>
#include <variant>

namespace {

// Where a property goes, and by that how it is read: a text, a number by the collectors' own rule, a number
// by CWmi's, a list of texts, or a constant that nothing is read for.
template <class Section>
using Target = std::variant<std::wstring Section::*, std::int32_t Section::*, std::uint32_t Section::*,
                            std::vector<std::wstring> Section::*>;

enum class Rule {
    kOptional,
    kMandatory,    // the collector fails when the property cannot be read
    kWholeNumber,  // by CWmi's integer operation
    kConstant64,   // not read at all: compatibility C77
};

template <class Section>
struct Property {
    const wchar_t* name = nullptr;
    Target<Section> target;
    Rule rule = Rule::kOptional;
    const wchar_t* failure = nullptr;  // logged where a mandatory property cannot be read
};

// A collector: its query, its messages and its properties in the order in which they are read.
template <class Section, std::size_t kCount>
struct Collector {
    const wchar_t* query;
    const wchar_t* not_initialized;
    const wchar_t* find_first_failed;
    Property<Section> properties[kCount];
};

constexpr Collector<ProcessorInfo, 8> kProcessor = {
    L"Select * from Win32_Processor",
    L"GetProcessorInfo wmi not initialized",
    L"GetProcessorInfo FindFirstObject failed",
    {
        {L"Manufacturer", &ProcessorInfo::Manufacturer},
        {L"Architecture", &ProcessorInfo::Architecture},
        {L"CurrentClockSpeed", &ProcessorInfo::CurrentClockSpeed},
        {L"Family", &ProcessorInfo::Family},
        {L"MaxClockSpeed", &ProcessorInfo::MaxClockSpeed},
        {L"ProcessorId", &ProcessorInfo::ProcessorId},
        {L"ProcessorType", &ProcessorInfo::ProcessorType},
        {L"UniqueId", &ProcessorInfo::UniqueId},
    },
};

constexpr Collector<OSInfo, 21> kOS = {
    L"Select * from Win32_OperatingSystem",
    L"GetOSInfo wmi not initialized",
    L"GetOSInfo FindFirstObject failed",
    {
        {L"BootDevice", &OSInfo::BootDevice, Rule::kMandatory, L"GetOSInfo GetBootDevice failed"},
        {nullptr, &OSInfo::OSArchitecture, Rule::kConstant64},
        {L"CountryCode", &OSInfo::CountryCode},
        {L"CSDVersion", &OSInfo::CSDVersion},
        {L"CSName", &OSInfo::CSName},
        {L"CurrentTimeZone", &OSInfo::CurrentTimeZone},
        {L"Description", &OSInfo::Description},
        {L"Locale", &OSInfo::Locale},
        {L"Manufacturer", &OSInfo::Manufacturer},
        {L"Organization", &OSInfo::Organization},
        {L"OSLanguage", &OSInfo::OSLanguage},
        {L"OSType", &OSInfo::OSType},
        {L"SerialNumber", &OSInfo::SerialNumber},
        {L"SystemDevice", &OSInfo::SystemDevice, Rule::kMandatory, L"GetOSInfo GetSystemDevice failed"},
        {L"SystemDirectory", &OSInfo::SystemDirectory},
        {L"SystemDrive", &OSInfo::SystemDrive},
        {L"Version", &OSInfo::Version},
        {L"ProductType", &OSInfo::ProductType, Rule::kWholeNumber},
        // Not the property "Name": compatibility C76
        {L"Caption", &OSInfo::Name},
        {L"WindowsDirectory", &OSInfo::WindowsDirectory},
        // Read a second time: compatibility C124
        {L"Description", &OSInfo::Description},
    },
};

constexpr Collector<ComputerSystemInfo, 10> kComputerSystem = {
    L"Select * from Win32_ComputerSystem",
    L"GetComputerSystem wmi not initialized",
    L"GetComputerSystem FindFirstObject failed",
    {
        {L"CurrentTimeZone", &ComputerSystemInfo::CurrentTimeZone},
        {L"Description", &ComputerSystemInfo::Description},
        {L"Domain", &ComputerSystemInfo::Domain},
        {L"Manufacturer", &ComputerSystemInfo::Manufacturer},
        {L"Model", &ComputerSystemInfo::Model},
        {L"NumberOfProcessors", &ComputerSystemInfo::NumberOfProcessors, Rule::kMandatory,
         L"GetComputerSystem GetNumberOfProcessors failed"},
        {L"SystemStartupOptions", &ComputerSystemInfo::SystemStartupOptions},
        {L"SystemType", &ComputerSystemInfo::SystemType},
        {L"TotalPhysicalMemory", &ComputerSystemInfo::TotalPhysicalMemory},
        {L"UserName", &ComputerSystemInfo::UserName},
    },
};

constexpr Collector<BootConfigurationInfo, 8> kBootConfiguration = {
    L"Select * from Win32_BootConfiguration",
    L"GetBootConfiguration wmi not initialized",
    L"GetBootConfiguration FindFirstObject failed",
    {
        {L"BootDirectory", &BootConfigurationInfo::BootDirectory, Rule::kMandatory,
         L"GetBootConfiguration GetBootDirectory failed"},
        {L"ConfigurationPath", &BootConfigurationInfo::ConfigurationPath},
        {L"Description", &BootConfigurationInfo::Description},
        {L"LastDrive", &BootConfigurationInfo::LastDrive},
        {L"Name", &BootConfigurationInfo::Name},
        {L"ScratchDirectory", &BootConfigurationInfo::ScratchDirectory},
        {L"SettingID", &BootConfigurationInfo::SettingID, Rule::kWholeNumber},
        {L"TempDirectory", &BootConfigurationInfo::TempDirectory},
    },
};

bool ReadValue(CWmi& wmi, const wchar_t* name, Rule /*rule*/, std::wstring& value) {
    return wmi.Get(name, value);
}

bool ReadValue(CWmi& wmi, const wchar_t* name, Rule /*rule*/, std::vector<std::wstring>& value) {
    return wmi.Get(name, value);
}

bool ReadValue(CWmi& wmi, const wchar_t* name, Rule /*rule*/, std::int32_t& value) {
    return wmi.GetLowInteger(name, value);
}

bool ReadValue(CWmi& wmi, const wchar_t* name, Rule rule, std::uint32_t& value) {
    constexpr std::uint32_t kOnlyArchitecture = 64;
    if (rule == Rule::kConstant64) {
        value = kOnlyArchitecture;
        return true;
    }
    auto number = static_cast<std::int32_t>(value);
    const bool read = rule == Rule::kWholeNumber ? wmi.Get(name, number) : wmi.GetLowInteger(name, number);
    value = static_cast<std::uint32_t>(number);
    return read;
}

template <class Section>
bool ReadProperty(CWmi& wmi, const Property<Section>& property, Section& section) {
    const bool read =
        std::visit([&](auto member) { return ReadValue(wmi, property.name, property.rule, section.*member); },
                   property.target);
    // A null value, or one of another type, counts as read: compatibility C125
    if (!read && property.rule == Rule::kMandatory) {
        GetLogger().Write(kLogError, property.failure);
        return false;
    }
    return true;
}

template <class Section, std::size_t kCount>
int Collect(const Collector<Section, kCount>& collector, Section& section) {
    CWmi wmi(collector.query);
    if (!wmi.initialized()) {
        GetLogger().Write(kLogError, collector.not_initialized);
        return 0;
    }
    if (!wmi.FindFirstObject()) {
        GetLogger().Write(kLogError, collector.find_first_failed);
        return 0;
    }
    // The last instance stands, lists grow, and a walk that breaks off is no failure: compatibility C74,
    // C75, C126
    do {
        for (const Property<Section>& property : collector.properties) {
            if (!ReadProperty(wmi, property, section)) {
                return 0;
            }
        }
    } while (wmi.FindNextObject());
    return 1;
}

bool InitializeCom(bmr_common::COMEnabler& com) {
    if (!com.InitializeCOM(L"GetWMIInfo")) {
        GetLogger().Write(kLogError, L"GetWMIInfo: Cannot initialize COM");
        return false;
    }
    return true;
}

}  // namespace

int GetProcessorInfo(ProcessorInfo& processor) {
    return Collect(kProcessor, processor);
}

int GetOSInfo(OSInfo& os) {
    return Collect(kOS, os);
}

int GetComputerSystem(ComputerSystemInfo& computer_system) {
    return Collect(kComputerSystem, computer_system);
}

int GetBootConfiguration(BootConfigurationInfo& boot_configuration) {
    return Collect(kBootConfiguration, boot_configuration);
}

// In another order than GetWMIInfo below: compatibility C123
bool CollectSystemSections(SystemSections& sections, SectionsRead& read) {
    bmr_common::COMEnabler com;
    if (!InitializeCom(com)) {
        return false;
    }
    read.processor = GetProcessorInfo(sections.Processor) != 0;
    read.boot_configuration = GetBootConfiguration(sections.BootConfiguration) != 0;
    read.computer_system = GetComputerSystem(sections.ComputerSystem) != 0;
    read.os = GetOSInfo(sections.OS) != 0;
    return true;
}

bool GetWMIInfo(SystemSections& sections) {
    SectionsRead read;
    bmr_common::COMEnabler com;
    if (!InitializeCom(com)) {
        return false;
    }
    read.processor = GetProcessorInfo(sections.Processor) != 0;
    read.os = GetOSInfo(sections.OS) != 0;
    read.computer_system = GetComputerSystem(sections.ComputerSystem) != 0;
    read.boot_configuration = GetBootConfiguration(sections.BootConfiguration) != 0;
    return read.all();
}

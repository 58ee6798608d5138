#include "capture/document/system_sections.h"

#include "capture/document/fields.h"
#include "common/xml/xml_values.h"

namespace {

constexpr Field<SystemSections> kHeader[] = {
    {"Version", &SystemSections::Version},
    {"DllVersion", &SystemSections::DllVersion},
};

constexpr Field<ProcessorInfo> kProcessor[] = {
    {"Architecture", &ProcessorInfo::Architecture},
    {"CurrentClockSpeed", &ProcessorInfo::CurrentClockSpeed},
    {"Family", &ProcessorInfo::Family},
    {"Manufacturer", &ProcessorInfo::Manufacturer},
    {"MaxClockSpeed", &ProcessorInfo::MaxClockSpeed},
    {"ProcessorId", &ProcessorInfo::ProcessorId},
    {"ProcessorType", &ProcessorInfo::ProcessorType},
    {"UniqueId", &ProcessorInfo::UniqueId},
};

// Before and after the startup options, which are a list.
constexpr Field<ComputerSystemInfo> kComputerSystemHead[] = {
    {"CurrentTimeZone", &ComputerSystemInfo::CurrentTimeZone},
    {"Description", &ComputerSystemInfo::Description},
    {"Domain", &ComputerSystemInfo::Domain},
    {"Manufacturer", &ComputerSystemInfo::Manufacturer},
    {"Model", &ComputerSystemInfo::Model},
    {"NumberOfProcessors", &ComputerSystemInfo::NumberOfProcessors},
};

constexpr Field<ComputerSystemInfo> kComputerSystemTail[] = {
    {"SystemType", &ComputerSystemInfo::SystemType},
    {"TotalPhysicalMemory", &ComputerSystemInfo::TotalPhysicalMemory},
    {"UserName", &ComputerSystemInfo::UserName},
};

constexpr Field<BootConfigurationInfo> kBootConfiguration[] = {
    {"BootDirectory", &BootConfigurationInfo::BootDirectory},
    {"ConfigurationPath", &BootConfigurationInfo::ConfigurationPath},
    {"Description", &BootConfigurationInfo::Description},
    {"LastDrive", &BootConfigurationInfo::LastDrive},
    {"Name", &BootConfigurationInfo::Name},
    {"ScratchDirectory", &BootConfigurationInfo::ScratchDirectory},
    {"SettingID", &BootConfigurationInfo::SettingID},
    {"TempDirectory", &BootConfigurationInfo::TempDirectory},
};

constexpr Field<OSInfo> kOS[] = {
    {"BootDevice", &OSInfo::BootDevice},
    {"CountryCode", &OSInfo::CountryCode},
    {"CSDVersion", &OSInfo::CSDVersion},
    {"CSName", &OSInfo::CSName},
    {"CurrentTimeZone", &OSInfo::CurrentTimeZone},
    {"Description", &OSInfo::Description},
    {"Locale", &OSInfo::Locale},
    {"Manufacturer", &OSInfo::Manufacturer},
    {"Organization", &OSInfo::Organization},
    {"OSLanguage", &OSInfo::OSLanguage},
    {"OSType", &OSInfo::OSType},
    {"OSArchitecture", &OSInfo::OSArchitecture},
    {"SerialNumber", &OSInfo::SerialNumber},
    {"SystemDevice", &OSInfo::SystemDevice},
    {"SystemDirectory", &OSInfo::SystemDirectory},
    {"SystemDrive", &OSInfo::SystemDrive},
    {"Version", &OSInfo::Version},
    {"Name", &OSInfo::Name},
    {"WindowsDirectory", &OSInfo::WindowsDirectory},
};

void WriteStartupOptions(CMSXmlNode& computer_system, const std::vector<std::wstring>& options) {
    CMSXmlNode list = computer_system.AddChild("SystemStartupOptions");
    AddNumberElement(list, "size", static_cast<std::uint32_t>(options.size()));
    std::size_t position = 0;
    for (const std::wstring& option : options) {
        list.AddTextChild(("child" + std::to_string(position++)).c_str(), option);
    }
}

void WriteComputerSystem(CMSXmlNode& environment, const ComputerSystemInfo& computer_system) {
    CMSXmlNode section = environment.AddChild("ComputerSystem");
    WriteFields(section, computer_system, kComputerSystemHead);
    WriteStartupOptions(section, computer_system.SystemStartupOptions);
    WriteFields(section, computer_system, kComputerSystemTail);
}

template <class Record, class Fields>
void WriteSection(CMSXmlNode& environment, const char* name, const Record& record, const Fields& fields) {
    CMSXmlNode section = environment.AddChild(name);
    WriteFields(section, record, fields);
}

}  // namespace

void WriteSystemSections(CMSXmlNode& environment, const SystemSections& sections) {
    WriteFields(environment, sections, kHeader);
    WriteSection(environment, "Processor", sections.Processor, kProcessor);
    WriteComputerSystem(environment, sections.ComputerSystem);
    WriteSection(environment, "BootConfiguration", sections.BootConfiguration, kBootConfiguration);
    WriteSection(environment, "OS", sections.OS, kOS);
}

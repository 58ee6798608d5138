#include "capture/exports/system_dump.h"

#include "common/logger/orvane_logger.h"

#include <variant>

namespace {

template <class Section>
using LineMember = std::variant<std::int32_t Section::*, std::uint32_t Section::*, std::wstring Section::*>;

// One line of a block: its format and the member that fills it.
template <class Section>
struct Line {
    const wchar_t* format;
    LineMember<Section> member;
};

constexpr Line<ProcessorInfo> kProcessor[] = {
    {L"Architecture: %d", &ProcessorInfo::Architecture},
    {L"CurrentClockSpeed: %d", &ProcessorInfo::CurrentClockSpeed},
    {L"Family: %d", &ProcessorInfo::Family},
    {L"Manufacturer: %s", &ProcessorInfo::Manufacturer},
    {L"MaxClockSpeed: %d", &ProcessorInfo::MaxClockSpeed},
    {L"ProcessorId: %d", &ProcessorInfo::ProcessorId},
    {L"ProcessorType: %d", &ProcessorInfo::ProcessorType},
    {L"UniqueId: %d", &ProcessorInfo::UniqueId},
};

constexpr Line<BootConfigurationInfo> kBootConfiguration[] = {
    {L"Name: %s", &BootConfigurationInfo::Name},
    {L"BootDirectory: %s", &BootConfigurationInfo::BootDirectory},
    {L"ConfigurationPath: %s", &BootConfigurationInfo::ConfigurationPath},
    {L"Description: %s", &BootConfigurationInfo::Description},
    {L"LastDrive: %s", &BootConfigurationInfo::LastDrive},
    {L"TempDirectory: %s", &BootConfigurationInfo::TempDirectory},
    {L"ScratchDirectory: %s", &BootConfigurationInfo::ScratchDirectory},
    {L"SettingID: %d", &BootConfigurationInfo::SettingID},
};

// Before and after the startup options, which are a list.
constexpr Line<ComputerSystemInfo> kComputerSystemHead[] = {
    {L"CurrentTimeZone: %d", &ComputerSystemInfo::CurrentTimeZone},
    {L"Description: %s", &ComputerSystemInfo::Description},
    {L"Domain: %s", &ComputerSystemInfo::Domain},
    {L"Manufacturer: %s", &ComputerSystemInfo::Manufacturer},
    {L"Model: %s", &ComputerSystemInfo::Model},
    {L"NumberOfProcessors: %d", &ComputerSystemInfo::NumberOfProcessors},
};

constexpr Line<ComputerSystemInfo> kComputerSystemTail[] = {
    {L"SystemType: %s", &ComputerSystemInfo::SystemType},
    {L"TotalPhysicalMemory: %s", &ComputerSystemInfo::TotalPhysicalMemory},
    {L"UserName: %s", &ComputerSystemInfo::UserName},
};

constexpr Line<OSInfo> kOS[] = {
    {L"BootDevice: %s", &OSInfo::BootDevice},
    {L"CountryCode: %s", &OSInfo::CountryCode},
    {L"CSDVersion: %s", &OSInfo::CSDVersion},
    {L"CSName: %s", &OSInfo::CSName},
    {L"CurrentTimeZone: %d", &OSInfo::CurrentTimeZone},
    {L"Description: %s", &OSInfo::Description},
    {L"Locale: %s", &OSInfo::Locale},
    {L"Manufacturer: %s", &OSInfo::Manufacturer},
    {L"Organization: %s", &OSInfo::Organization},
    {L"OSLanguage: %d", &OSInfo::OSLanguage},
    {L"OSType: %d", &OSInfo::OSType},
    // Not in the document: compatibility C63
    {L"Product Type: %d", &OSInfo::ProductType},
    {L"OSArchitecture: %u", &OSInfo::OSArchitecture},
    {L"SerialNumber: %s", &OSInfo::SerialNumber},
    {L"SystemDevice: %s", &OSInfo::SystemDevice},
    {L"SystemDirectory: %s", &OSInfo::SystemDirectory},
    {L"SystemDrive: %s", &OSInfo::SystemDrive},
    {L"Version: %s", &OSInfo::Version},
    {L"Name: %s", &OSInfo::Name},
    {L"WindowsDirectory: %s", &OSInfo::WindowsDirectory},
};

void WriteLine(const wchar_t* format, std::int32_t value) {
    GetLogger().Write(kLogInformation, format, value);
}

void WriteLine(const wchar_t* format, std::uint32_t value) {
    GetLogger().Write(kLogInformation, format, value);
}

void WriteLine(const wchar_t* format, const std::wstring& value) {
    GetLogger().Write(kLogInformation, format, value.c_str());
}

template <class Section, class Lines>
void WriteLines(const Section& section, const Lines& lines) {
    for (const auto& line : lines) {
        std::visit([&](auto member) { WriteLine(line.format, section.*member); }, line.member);
    }
}

void WriteComputerSystem(const ComputerSystemInfo& computer_system) {
    WriteLines(computer_system, kComputerSystemHead);
    WriteLine(L"SystemStartupOptions: size(%d)",
              static_cast<std::int32_t>(computer_system.SystemStartupOptions.size()));
    for (const std::wstring& option : computer_system.SystemStartupOptions) {
        WriteLine(L"    %s", option);
    }
    WriteLines(computer_system, kComputerSystemTail);
}

// Begins a block; false, after its one line, where its section was not read.
bool BeginBlock(bool read, const wchar_t* header, const wchar_t* failure) {
    if (read) {
        GetLogger().Write(kLogInformation, header);
    } else {
        GetLogger().Write(kLogError, failure);
    }
    return read;
}

}  // namespace

// Not in the order of the document: compatibility C62
void DumpSystemSections(const SystemSections& sections, const SectionsRead& read) {
    if (BeginBlock(read.processor, L"[Processor Information]", L"WMIDumpInfo Processor Info Failed")) {
        WriteLines(sections.Processor, kProcessor);
    }
    if (BeginBlock(read.boot_configuration, L"[Boot Configuration Information]",
                   L"WMIDumpInfo Boot Configuration Info Failed")) {
        WriteLines(sections.BootConfiguration, kBootConfiguration);
    }
    // The failure line has half of the block's name: compatibility C64
    if (BeginBlock(read.computer_system, L"[Computer System Information]",
                   L"WMIDumpInfo System Info Failed")) {
        WriteComputerSystem(sections.ComputerSystem);
    }
    if (BeginBlock(read.os, L"[Operating System Information]", L"WMIDumpInfo Operating System Info Failed")) {
        WriteLines(sections.OS, kOS);
    }
}

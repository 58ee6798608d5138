#include "capture/environment/system_information.h"

#include "capture/environment/wmi_facts.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/com_enabler.h"
#include "common/platform/wmi.h"

#include <algorithm>
#include <variant>

namespace {

bool ReadValue(CWmi& wmi, const wchar_t* name, WmiReading /*reading*/, std::wstring& value) {
    return wmi.Get(name, value);
}

bool ReadValue(CWmi& wmi, const wchar_t* name, WmiReading /*reading*/, std::vector<std::wstring>& value) {
    return wmi.Get(name, value);
}

bool ReadValue(CWmi& wmi, const wchar_t* name, WmiReading /*reading*/, std::int32_t& value) {
    return wmi.GetLowInteger(name, value);
}

bool ReadValue(CWmi& wmi, const wchar_t* name, WmiReading reading, std::uint32_t& value) {
    constexpr std::uint32_t kOnlyArchitecture = 64;
    if (reading == WmiReading::kConstant64) {
        value = kOnlyArchitecture;
        return true;
    }
    auto number = static_cast<std::int32_t>(value);
    const bool read =
        reading == WmiReading::kWholeNumber ? wmi.Get(name, number) : wmi.GetLowInteger(name, number);
    value = static_cast<std::uint32_t>(number);
    return read;
}

template <class Section>
bool ReadFact(CWmi& wmi, const WmiFact<Section>& fact, Section& section) {
    const bool read =
        std::visit([&](auto member) { return ReadValue(wmi, fact.property, fact.reading, section.*member); },
                   fact.member);
    // A null value, or a value of another type, counts as read: compatibility C125
    if (!read && fact.reading == WmiReading::kMandatory) {
        GetLogger().Write(kLogError, fact.failure);
        return false;
    }
    return true;
}

template <class Section>
bool Collect(const WmiClass<Section>& wmi_class, Section& section) {
    // The values of the last instance are kept, lists are appended to, and an enumeration that stops early is
    // not a failure: compatibility C74, C75, C126
    const WmiVisit visit = VisitWmiObjects(wmi_class.query, [&](CWmi& instance) {
        return std::all_of(wmi_class.facts.begin(), wmi_class.facts.end(),
                           [&](const auto& fact) { return ReadFact(instance, fact, section); });
    });
    if (visit == WmiVisit::kNotConnected) {
        GetLogger().Write(kLogError, wmi_class.not_initialized);
    }
    if (visit == WmiVisit::kNoneFound) {
        GetLogger().Write(kLogError, wmi_class.find_first_failed);
    }
    return visit == WmiVisit::kAllVisited;
}

bool InitializeCom(bmr_common::COMEnabler& com) {
    if (!com.InitializeCOM(L"GetWMIInfo")) {
        GetLogger().Write(kLogError, L"GetWMIInfo: Cannot initialize COM");
        return false;
    }
    return true;
}

}  // namespace

bool GetProcessorInfo(ProcessorInfo& processor) {
    return Collect(kProcessorClass, processor);
}

bool GetOSInfo(OSInfo& os) {
    return Collect(kOSClass, os);
}

bool GetComputerSystem(ComputerSystemInfo& computer_system) {
    return Collect(kComputerSystemClass, computer_system);
}

bool GetBootConfiguration(BootConfigurationInfo& boot_configuration) {
    return Collect(kBootConfigurationClass, boot_configuration);
}

// The order differs from GetWMIInfo below: compatibility C123
bool CollectSystemSections(SystemSections& sections, SectionsRead& read) {
    bmr_common::COMEnabler com;
    if (!InitializeCom(com)) {
        return false;
    }
    read.processor = GetProcessorInfo(sections.Processor);
    read.boot_configuration = GetBootConfiguration(sections.BootConfiguration);
    read.computer_system = GetComputerSystem(sections.ComputerSystem);
    read.os = GetOSInfo(sections.OS);
    return true;
}

bool GetWMIInfo(SystemSections& sections) {
    SectionsRead read;
    bmr_common::COMEnabler com;
    if (!InitializeCom(com)) {
        return false;
    }
    read.processor = GetProcessorInfo(sections.Processor);
    read.os = GetOSInfo(sections.OS);
    read.computer_system = GetComputerSystem(sections.ComputerSystem);
    read.boot_configuration = GetBootConfiguration(sections.BootConfiguration);
    return read.all();
}

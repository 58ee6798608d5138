#include "documents/reader/facts.h"

#include <algorithm>
#include <charconv>

namespace documents {

namespace {

enum Kind {
    kText,
    kNumber,
    kNumberOrZero,  // WMI has no such value: 0 stands for one that it did not give
    kNumberAsText,  // a number that may be missing or, in theory, something else
    kAlwaysZero,    // says nothing
};

struct FactRule {
    std::string_view section;
    std::string_view name;
    Kind kind;
};

constexpr FactRule kFacts[] = {
    {"Processor", "Architecture", kNumber},
    {"Processor", "CurrentClockSpeed", kNumberOrZero},
    {"Processor", "Family", kNumberOrZero},
    {"Processor", "Manufacturer", kText},
    {"Processor", "MaxClockSpeed", kNumberOrZero},
    {"Processor", "ProcessorId", kAlwaysZero},
    {"Processor", "ProcessorType", kNumberOrZero},
    {"Processor", "UniqueId", kAlwaysZero},

    {"ComputerSystem", "CurrentTimeZone", kNumber},
    {"ComputerSystem", "Description", kText},
    {"ComputerSystem", "Domain", kText},
    {"ComputerSystem", "Manufacturer", kText},
    {"ComputerSystem", "Model", kText},
    {"ComputerSystem", "NumberOfProcessors", kNumberOrZero},
    {"ComputerSystem", "SystemType", kText},
    {"ComputerSystem", "TotalPhysicalMemory", kNumberAsText},
    {"ComputerSystem", "UserName", kText},

    {"BootConfiguration", "BootDirectory", kText},
    {"BootConfiguration", "ConfigurationPath", kText},
    {"BootConfiguration", "Description", kText},
    {"BootConfiguration", "LastDrive", kText},
    {"BootConfiguration", "Name", kText},
    {"BootConfiguration", "ScratchDirectory", kText},
    {"BootConfiguration", "SettingID", kAlwaysZero},
    {"BootConfiguration", "TempDirectory", kText},

    {"OS", "BootDevice", kText},
    {"OS", "CountryCode", kText},
    {"OS", "CSDVersion", kText},
    {"OS", "CSName", kText},
    {"OS", "CurrentTimeZone", kNumber},
    {"OS", "Description", kText},
    {"OS", "Locale", kText},
    {"OS", "Manufacturer", kText},
    {"OS", "Organization", kText},
    {"OS", "OSLanguage", kNumberOrZero},
    {"OS", "OSType", kNumberOrZero},
    {"OS", "OSArchitecture", kNumber},
    {"OS", "SerialNumber", kText},
    {"OS", "SystemDevice", kText},
    {"OS", "SystemDirectory", kText},
    {"OS", "SystemDrive", kText},
    {"OS", "Version", kText},
    {"OS", "Name", kText},
    {"OS", "WindowsDirectory", kText},

    {"BootConfig", "m_strBootFolder", kText},
    {"BootConfig", "m_strBootOptions", kText},
    {"BootConfig", "m_strOS", kText},
    {"BootConfig", "m_OSArchitecture", kNumber},
    {"BootConfig", "numeric_version_string", kText},
    {"BootConfig", "product_type", kNumberOrZero},
};

std::optional<std::int64_t> NumberIn(std::string_view text) {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

void TakeFact(Machine& machine, const FactRule& rule, Row& row) {
    if (rule.kind == kNumber || rule.kind == kNumberOrZero || rule.kind == kAlwaysZero) {
        const std::int64_t number = row.Signed(rule.name);
        if (rule.kind == kNumber || (rule.kind == kNumberOrZero && number != 0)) {
            machine.facts.push_back({rule.section, rule.name, number});
        }
        return;
    }
    const std::string_view text = row.Text(rule.name);
    if (text.empty()) {
        return;
    }
    const std::optional<std::int64_t> number = rule.kind == kNumberAsText ? NumberIn(text) : std::nullopt;
    if (number) {
        machine.facts.push_back({rule.section, rule.name, *number});
    } else {
        machine.facts.push_back({rule.section, rule.name, std::string(text)});
    }
}

}  // namespace

bool IsFactSection(std::string_view name) {
    return std::any_of(std::begin(kFacts), std::end(kFacts),
                       [&](const FactRule& rule) { return rule.section == name; });
}

void TakeFacts(Machine& machine, std::string_view section, Row& row) {
    for (const FactRule& rule : kFacts) {
        if (rule.section == section) {
            TakeFact(machine, rule, row);
        }
    }
}

}  // namespace documents

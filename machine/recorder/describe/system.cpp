// What does not belong to a disk or volume.

#include "machine/description/text.h"
#include "machine/recorder/describe/facts.h"
#include "machine/recorder/observe/answer_texts.h"
#include "machine/simulation/name_index.h"

#include <algorithm>
#include <set>

namespace recorder {
namespace {

constexpr const char* kControlKey = "RegEnumValueW";
constexpr std::uint32_t kProcedureNotFound = 0xC000007A;

bool IsValidName(const std::wstring& name) {
    return !name.empty() && name.find(L'\\') == std::wstring::npos;
}

void DescribeDosDevices(const Observations& observations, machine::Description& description) {
    const machine::NameIndex derived(description);
    for (const std::wstring& name : observations.ObjectsOf("QueryDosDeviceW")) {
        const Answer& answer = observations.Best("QueryDosDeviceW", name)->answer;
        const std::vector<std::wstring> targets = TextsOf(answer.bytes);
        const std::wstring target = targets.empty() ? std::wstring() : targets.front();
        const std::wstring* usual = derived.FindDosDevice(name);
        if (IsValidName(name) && answer.succeeded() && (usual == nullptr || *usual != target)) {
            description.dos_devices.push_back({name, target});
        }
    }
}

// The listed names, if they are not those of the directory of links.
void DescribeDosNames(const Observations& observations, machine::Description& description) {
    const Observation* list = observations.Best("QueryDosDeviceW", L"");
    if (list != nullptr && list->answer.succeeded()) {
        std::vector<std::wstring> names = TextsOf(list->answer.bytes);
        if (names != machine::NameIndex(description).dos_names()) {
            description.dos_names = std::move(names);
        }
    }
}

bool SameEntries(const std::vector<machine::DirectoryEntry>& left,
                 const std::vector<machine::DirectoryEntry>& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const machine::DirectoryEntry& own, const machine::DirectoryEntry& other) {
                          return own.name == other.name && own.type == other.type;
                      });
}

// A directory whose entries do not follow from the rest.
void DescribeDirectory(const Observation& observation, machine::Description& description) {
    std::vector<machine::DirectoryEntry> entries;
    for (const Part& part : observation.answer.parts) {
        entries.push_back({part.name, part.type});
    }
    const machine::NameIndex derived(description);
    const auto* usual = derived.FindDirectory(observation.question.object);
    if (observation.answer.succeeded() && (usual == nullptr || !SameEntries(*usual, entries))) {
        machine::ObjectDirectory directory;
        directory.path = observation.question.object;
        directory.entries = std::move(entries);
        description.directories.push_back(std::move(directory));
    }
}

}  // namespace

void DescribeNames(const Observations& observations, machine::Description& description) {
    DescribeDosDevices(observations, description);
    for (const std::wstring& path : observations.ObjectsOf("ZwQueryDirectoryObject")) {
        DescribeDirectory(*observations.Best("ZwQueryDirectoryObject", path), description);
    }
    DescribeDosNames(observations, description);
}

void DescribeRegistry(const Observations& observations, machine::Description& description) {
    description.registry.clear();
    for (const std::wstring& path : observations.ObjectsOf(kControlKey)) {
        const Answer& answer = observations.Best(kControlKey, path)->answer;
        if (!answer.step.empty()) {
            continue;  // the key does not exist, or is not for this user
        }
        machine::RegistryKey key{path, {}};
        for (const Part& part : answer.parts) {
            key.values.push_back({part.name, static_cast<std::uint32_t>(part.value), part.bytes});
        }
        // The order of the values is not part of a description.
        std::sort(key.values.begin(), key.values.end(),
                  [](const auto& left, const auto& right) { return left.name < right.name; });
        description.registry.push_back(std::move(key));
    }
}

void DescribeFirmware(const Observations& observations, machine::Description& description) {
    const Observation* type = observations.Best("GetFirmwareType", L"");
    if (type != nullptr && type->answer.succeeded()) {
        description.firmware.type = static_cast<std::uint32_t>(type->answer.value);
    }
    constexpr std::uint32_t kBios = 1;
    const std::uint32_t usual = description.firmware.type == kBios ? ERROR_INVALID_FUNCTION : ERROR_NOACCESS;
    for (const std::wstring& object : observations.ObjectsOf("GetFirmwareEnvironmentVariableW")) {
        const Answer& answer = observations.Best("GetFirmwareEnvironmentVariableW", object)->answer;
        if (answer.succeeded()) {
            description.firmware.variable_length = static_cast<std::uint32_t>(answer.value);
        } else if (!answer.blocks && !answer.crashed && answer.error != usual &&
                   answer.error != ERROR_PROC_NOT_FOUND) {
            description.firmware.variable_error = answer.error;
        }
    }
}

void DescribeXmlComponent(const Observations& observations, machine::Description& description) {
    constexpr std::uint32_t kNotRegistered = 0x80040154;  // REGDB_E_CLASSNOTREG
    for (const std::wstring& name : observations.ObjectsOf("CoCreateInstance")) {
        const Answer& answer = observations.Best("CoCreateInstance", name)->answer;
        description.xml_component = answer.error != kNotRegistered || answer.crashed;
    }
}

void DescribeMissing(const Observations& observations, machine::Description& description) {
    std::set<std::string> found;
    std::set<std::string> missing;
    for (const Observation& observation : observations.all()) {
        const Answer& answer = observation.answer;
        std::string call = answer.step.empty() ? observation.question.call : answer.step;
        call = call.substr(0, call.find(':'));
        const std::uint32_t code = call.starts_with("Zw") ? kProcedureNotFound : ERROR_PROC_NOT_FOUND;
        (answer.error == code && !answer.crashed ? missing : found).insert(call);
    }
    std::set_difference(missing.begin(), missing.end(), found.begin(), found.end(),
                        std::inserter(description.missing, description.missing.end()));
}

}  // namespace recorder

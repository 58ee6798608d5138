// The calls that fail on the observed machine alone.

#include "machine/description/control_codes.h"
#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"
#include "machine/recorder/describe/facts.h"
#include "machine/recorder/describe/replay.h"
#include "machine/recorder/observe/agreement.h"
#include "machine/simulation/name_index.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <tuple>

namespace recorder {
namespace {

constexpr const char* kMachineCalls[] = {"GetLogicalDrives", "GetFirmwareType",
                                         "IClassFactory::CreateInstance", "IWbemLocator::ConnectServer",
                                         "IClientSecurity::SetBlanket"};

bool IsMachineCall(const std::string& call) {
    return std::find(std::begin(kMachineCalls), std::end(kMachineCalls), call) != std::end(kMachineCalls);
}

// Where a description can say that a call fails: an object of a kind, by its name or position.
struct Place {
    enum class Kind { kMachine, kDisk, kVolume, kDosName, kDirectory, kClass };
    Kind kind = Kind::kMachine;
    std::size_t position = 0;  // of a disk or volume
    std::wstring name{};       // of all others

    bool operator<(const Place& other) const {
        return std::tie(kind, position, name) < std::tie(other.kind, other.position, other.name);
    }
};

std::optional<Place> PlaceOfPath(const machine::NameIndex& names, const std::wstring& path) {
    const machine::NameIndex::Target target = names.Resolve(path);
    switch (target.kind) {
        case machine::NameIndex::Target::Kind::kDisk:
            return Place{Place::Kind::kDisk, target.position};
        case machine::NameIndex::Target::Kind::kVolume:
            return Place{Place::Kind::kVolume, target.position};
        case machine::NameIndex::Target::Kind::kNone:
            break;
    }
    return std::nullopt;
}

// The search fails when it reaches a volume: the one after those that it listed. That it fails behind the
// last one can be said only if every step fails.
std::optional<Place> PlaceOfSearch(const machine::NameIndex& names, const Answer& search) {
    const std::size_t listed = search.parts.size();
    if (listed < names.volume_names().size()) {
        return PlaceOfPath(names, names.volume_names()[listed]);
    }
    return listed <= 1 ? std::optional(Place{}) : std::nullopt;
}

// None for a call that cannot be described.
std::optional<Place> PlaceOf(const machine::NameIndex& names, const Observation& observation) {
    const std::string call = CallOf(observation);
    const std::wstring& object = observation.question.object;
    if (IsMachineCall(call) || (call == "QueryDosDeviceW" && object.empty())) {
        return Place{};
    }
    if (call == "FindFirstVolumeW" || call == "FindNextVolumeW") {
        return PlaceOfSearch(names, observation.answer);
    }
    if (call.starts_with("Zw")) {
        return Place{Place::Kind::kDirectory, 0, object};
    }
    if (call == "QueryDosDeviceW") {
        return Place{Place::Kind::kDosName, 0, machine::Folded(object)};
    }
    if (call.starts_with("IEnumWbemClassObject") || call.starts_with("IWbem")) {
        return Place{Place::Kind::kClass, 0, machine::WmiClassKey(object)};
    }
    return machine::IsCallOf(machine::CallScope::kVolume, call) ? PlaceOfPath(names, object) : std::nullopt;
}

machine::CallErrors& ErrorsOfDirectory(machine::Description& description, const std::wstring& path) {
    auto found =
        std::find_if(description.directories.begin(), description.directories.end(),
                     [&](const auto& directory) { return machine::EqualNames(directory.path, path); });
    if (found == description.directories.end()) {
        machine::ObjectDirectory directory;
        directory.path = path;
        found = description.directories.insert(found, std::move(directory));
    }
    return found->errors;
}

// A name keeps the target that it has on the described machine, which is never told.
machine::CallErrors& ErrorsOfDosName(machine::Description& description, const std::wstring& name) {
    auto found = std::find_if(description.dos_devices.begin(), description.dos_devices.end(),
                              [&](const auto& device) { return machine::EqualNames(device.name, name); });
    if (found == description.dos_devices.end()) {
        const machine::NameIndex names(description);
        const std::wstring* target = names.FindDosDevice(name);
        found = description.dos_devices.insert(found, {name, target == nullptr ? std::wstring() : *target});
    }
    return found->errors;
}

machine::CallErrors& ErrorsAt(machine::Description& description, const Place& place,
                              const std::wstring& object) {
    switch (place.kind) {
        case Place::Kind::kDisk:
            return description.disks[place.position].errors;
        case Place::Kind::kVolume:
            return description.volumes[place.position].errors;
        case Place::Kind::kDosName:
            return ErrorsOfDosName(description, object);
        case Place::Kind::kDirectory:
            return ErrorsOfDirectory(description, object);
        case Place::Kind::kClass:
            return description.wmi[place.name].errors;
        case Place::Kind::kMachine:
            break;
    }
    return description.errors;
}

// Whether the buffer was too small: a larger one gets another answer.
bool IsBufferError(const Observations& observations, const Observation& observation) {
    const std::uint32_t error = observation.answer.error;
    if (error != ERROR_INSUFFICIENT_BUFFER && error != ERROR_MORE_DATA) {
        return false;
    }
    const auto asked = observations.Find(observation.question.call, observation.question.object);
    return std::any_of(asked.begin(), asked.end(), [&](const Observation* other) {
        return other->question.size > observation.question.size && other->answer.error != error;
    });
}

bool IsDescribable(const Observations& observations, const Observation& recorded, const Answer& described) {
    const Answer& answer = recorded.answer;
    return (answer.blocks || answer.error != 0) && !answer.crashed &&
           !IsBufferError(observations, recorded) && Compare(recorded, described) == Agreement::kDifferent;
}

// What is asked by one call of one object, by any of its names.
using Subject = std::pair<std::string, Place>;

// The subjects with an answer that succeeded: they do not always fail. Neither does the call on the machine
// as a whole, which would fail on every object.
std::set<Subject> Succeeding(const Observations& observations, const machine::NameIndex& names) {
    std::set<Subject> subjects;
    for (const Observation& observation : observations.all()) {
        const auto place = PlaceOf(names, observation);
        if (place && observation.answer.succeeded()) {
            subjects.emplace(observation.question.call, *place);
            subjects.emplace(observation.question.call, Place{});
        }
    }
    return subjects;
}

}  // namespace

bool DescribeErrors(const Observations& observations, machine::Description& description) {
    const Observations replayed = Replay(description, observations, [](std::size_t, const Question&) {});
    const machine::NameIndex names(description);
    const std::set<Subject> succeeding = Succeeding(observations, names);
    bool changed = false;
    for (std::size_t i = 0; i < observations.all().size(); ++i) {
        const Observation& recorded = observations.all()[i];
        const auto place = PlaceOf(names, recorded);
        if (!place || !IsDescribable(observations, recorded, replayed.all()[i].answer) ||
            succeeding.contains({recorded.question.call, *place})) {
            continue;
        }
        const std::string call = CallOf(recorded);
        const std::uint32_t code =
            recorded.answer.blocks ? machine::BlockedCode(call) : recorded.answer.error;
        changed = ErrorsAt(description, *place, recorded.question.object).codes.emplace(call, code).second ||
                  changed;
    }
    return changed;
}

}  // namespace recorder

#include "documents/diff/machine_changes.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace documents::diff {

namespace {

constexpr std::string_view kBootConfig = "BootConfig";

// What changes by itself or with something else that is told, or repeats another value.
struct FactName {
    std::string_view section;
    std::string_view name;
};

constexpr FactName kOnlyAllFacts[] = {
    {"Processor", "CurrentClockSpeed"},
    {"ComputerSystem", "CurrentTimeZone"},
    {"ComputerSystem", "UserName"},
    {"BootConfiguration", "BootDirectory"},
    {"BootConfiguration", "ConfigurationPath"},
    {"BootConfiguration", "Description"},
    {"BootConfiguration", "LastDrive"},
    {"BootConfiguration", "ScratchDirectory"},
    {"BootConfiguration", "TempDirectory"},
    {"OS", "BootDevice"},
    {"OS", "CurrentTimeZone"},
    {"OS", "SystemDevice"},
    {kBootConfig, "m_strBootFolder"},
    {kBootConfig, "m_strOS"},
    {kBootConfig, "m_OSArchitecture"},
    {kBootConfig, "numeric_version_string"},
};

bool IsOnlyAll(const Fact& fact) {
    return std::any_of(std::begin(kOnlyAllFacts), std::end(kOnlyAllFacts), [&](const FactName& name) {
        return name.section == fact.section && name.name == fact.name;
    });
}

const Fact* Find(const Machine& machine, const Fact& wanted) {
    const auto found = std::find_if(machine.facts.begin(), machine.facts.end(), [&](const Fact& fact) {
        return fact.section == wanted.section && fact.name == wanted.name;
    });
    return found == machine.facts.end() ? nullptr : &*found;
}

Value ValueOfFact(const Fact* fact) {
    if (fact == nullptr) {
        return {};
    }
    return std::visit([](const auto& value) { return Value(value); }, fact->value);
}

bool HasBootConfig(const Machine& machine) {
    return machine.format != Format::kThree;
}

// Those of the older document, then those that only the newer one has.
std::vector<std::pair<const Fact*, const Fact*>> FactPairs(const Machine& before, const Machine& after) {
    std::vector<std::pair<const Fact*, const Fact*>> pairs;
    for (const Fact& fact : before.facts) {
        pairs.emplace_back(&fact, Find(after, fact));
    }
    for (const Fact& fact : after.facts) {
        if (Find(before, fact) == nullptr) {
            pairs.emplace_back(nullptr, &fact);
        }
    }
    return pairs;
}

}  // namespace

std::vector<Change> CompareFacts(const Machine& before, const Machine& after, const CompareRules& rules) {
    std::vector<Change> changes;
    const auto compare = [&](const std::string& name, Value old_value, Value new_value) {
        if (old_value != new_value) {
            AddValues(changes, Kind::kChanged,
                      {name, name, Unit::kPlain, std::move(old_value), std::move(new_value)});
        }
    };
    const bool boot_config = HasBootConfig(before) && HasBootConfig(after);
    for (const auto& [old_fact, new_fact] : FactPairs(before, after)) {
        const Fact& fact = old_fact != nullptr ? *old_fact : *new_fact;
        if ((rules.all || !IsOnlyAll(fact)) && (boot_config || fact.section != kBootConfig)) {
            compare(std::string(fact.section) + '/' + std::string(fact.name), ValueOfFact(old_fact),
                    ValueOfFact(new_fact));
        }
    }
    compare("ComputerSystem/SystemStartupOptions", before.startup_options, after.startup_options);
    if (rules.all) {
        compare("DllVersion", before.library_version, after.library_version);
    }
    NameAll(changes, {Object::kMachine, TextFact(before, "OS", "CSName").value_or(""), "Machine", {}});
    return changes;
}

}  // namespace documents::diff

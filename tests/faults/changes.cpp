// Removes a disk or volume, or adds a volume, after every call.

#include "faults/case_runner.h"

#include <algorithm>

namespace faults {

namespace {

using Change = std::function<void(machine::Description&)>;

struct NamedChange {
    std::string name;
    Change change;
};

// Adds a volume with other names on the same extents as the first one.
void AddVolume(machine::Description& description) {
    if (description.volumes.empty()) {
        return;
    }
    machine::Volume volume = description.volumes.front();
    volume.guid = L"{99999999-8888-7777-6666-555555555555}";
    volume.aliases.clear();
    volume.device = L"\\Device\\HarddiskVolume99";
    volume.mount_points = {L"Q:\\"};
    description.volumes.push_back(volume);
}

std::vector<NamedChange> ChangesOf(const machine::Description& description) {
    std::vector<NamedChange> changes = {{"volume-comes", &AddVolume}};
    for (std::size_t i = 0; i < description.volumes.size(); ++i) {
        changes.push_back({"volume-goes-" + std::to_string(i), [i](machine::Description& machine) {
                               machine.volumes.erase(machine.volumes.begin() +
                                                     static_cast<std::ptrdiff_t>(i));
                           }});
    }
    for (std::size_t i = 0; i < description.disks.size(); ++i) {
        changes.push_back({"disk-goes-" + std::to_string(i), [i](machine::Description& machine) {
                               machine.disks.erase(machine.disks.begin() + static_cast<std::ptrdiff_t>(i));
                           }});
    }
    return changes;
}

std::vector<std::string> RunCase(Bench& bench, const machine::Description& original, std::size_t ordinal,
                                 const Change& change) {
    bool changed = false;
    machine::FaultRule rule;
    rule.ordinal = ordinal;
    rule.action = [&](machine::Answer& /*answer*/) {
        change(bench.simulation().description());
        changed = true;
    };
    bench.simulation().faults().Add(rule);
    const Outcome outcome = bench.Call();
    std::vector<std::string> breaches = bench.Breaches(outcome);
    bench.simulation().faults().Clear();
    if (!changed) {
        breaches.emplace_back("not-reached");
    }
    // The change stays for one more call, as on a real machine.
    const Outcome after = bench.Call();
    for (std::string& breach : bench.Breaches(after)) {
        breaches.push_back("changed " + std::move(breach));
    }
    bench.simulation().description() = original;
    for (std::string& breach : bench.BreachesOfNextRun()) {
        breaches.push_back("then " + std::move(breach));
    }
    return breaches;
}

}  // namespace

void Changes(CaseRunner& runner, Bench& bench) {
    const machine::Description original = bench.simulation().machine();
    const std::vector<machine::CallRecord> records = bench.CleanCalls();
    runner.tally().calls += records.size();
    for (std::size_t ordinal = 1; ordinal <= records.size(); ++ordinal) {
        for (const NamedChange& named : ChangesOf(original)) {
            const std::string call = std::to_string(ordinal);
            const Choice& choice = runner.choice();
            if ((choice.call.empty() || choice.call == call) &&
                (choice.fault.empty() || choice.fault == named.name)) {
                runner.Run("--call " + call + " --fault " + named.name, records[ordinal - 1].name,
                           [&] { return RunCase(bench, original, ordinal, named.change); });
            }
        }
    }
}

}  // namespace faults

// Whether the machine would start: the boot volume, which the machine starts from, and the system volume,
// which holds Windows.

#include "documents/verify/rules.h"

#include <algorithm>

namespace documents {

namespace {

using Role = std::optional<bool> Volume::*;

std::size_t CountOf(const Machine& machine, Role role) {
    return static_cast<std::size_t>(
        std::count_if(machine.volumes.begin(), machine.volumes.end(),
                      [&](const Volume& volume) { return volume.*role == true; }));
}

void BootVolume(const Subject& subject, Report& report) {
    if (CountOf(subject.machine, &Volume::boot) == 0) {
        report.Error("machine",
                     "No volume of the document is the boot volume, which the machine starts from.");
    }
}

void SystemVolume(const Subject& subject, Report& report) {
    if (CountOf(subject.machine, &Volume::system) == 0) {
        report.Error("machine", "No volume of the document is the system volume, which holds Windows.");
    }
}

// Formats 1 and 2 say it in BootConfig and in the volume's row.
void SystemReference(const Subject& subject, Report& report) {
    const Machine& machine = subject.machine;
    if (machine.format == Format::kThree || CountOf(machine, &Volume::system) == 0) {
        return;
    }
    const bool agrees =
        std::any_of(machine.volumes.begin(), machine.volumes.end(), [&](const Volume& volume) {
            return volume.system == true && volume.reference && volume.reference == machine.system_reference;
        });
    if (!agrees) {
        report.Error("BootConfig/m_guidSystemVolume",
                     "It is not the m_GUID of a volume that is marked as the system volume.");
    }
}

void Several(const Subject& subject, Report& report) {
    for (const auto& [role, name] :
         {std::pair(&Volume::boot, "boot"), std::pair(&Volume::system, "system")}) {
        const std::size_t count = CountOf(subject.machine, role);
        if (count > 1) {
            report.Note("machine", std::to_string(count) + " volumes are marked as the " + name + " volume.");
        }
    }
}

constexpr Rule kRules[] = {
    {{"D040", "no boot volume"}, BootVolume},
    {{"D041", "no system volume"}, SystemVolume},
    {{"D042", "the boot configuration and the volumes contradict each other"}, SystemReference},
    {{"D043", "several boot or system volumes"}, Several},
};

}  // namespace

std::span<const Rule> RoleRules() {
    return kRules;
}

}  // namespace documents

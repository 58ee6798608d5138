#include "faults/library.h"

#include "faults/import_hooks.h"
#include "machine/simulation/redirect.h"
#include "machine/simulation/simulation.h"
#include "support/request_watch.h"
#include "support/security_page.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>

namespace faults {

namespace {

constexpr EntryPoint kEntryPoints[] = {
    {"capture1", 1, nullptr},
    {"capture2", 2, nullptr},
    {"capture3", 3, nullptr},
    {"wmi", 0, &host::OrvaneLibrary::WMIDumpInfo},
    {"disks", 0, &host::OrvaneLibrary::DiskDumpInfo},
    {"volumes", 0, &host::OrvaneLibrary::VolumeDumpInfo},
    {"firmware", 0, &host::OrvaneLibrary::FirmwareDumpInfo},
};

}  // namespace

Library::Library(const std::filesystem::path& file) : host::OrvaneLibrary(file) {
    if (!machine::PutModuleOnSimulation(module())) {
        throw std::runtime_error("the library cannot be put on the simulation");
    }
    InstallImportHooks(module());
    support::WatchRequests(module());
}

void ForgetRequests() {
    support::RequestsOfLibrary().Clear();
    machine::Simulation::Current()->calls().Clear();
}

bool AskedOnlyWhatIsDocumented(const EntryPoint& entry) {
    static const auto page = support::SecurityPage::Read(ORVANE_SOURCE_DIR "/SECURITY.md");
    const support::Requests& requests = support::RequestsOfLibrary();
    const std::set<std::string> readings =
        support::ReadingsOf(machine::Simulation::Current()->calls().names());
    return page.Covers(entry.name, requests.kinds) &&
           std::includes(page.readings.begin(), page.readings.end(), readings.begin(), readings.end()) &&
           std::all_of(requests.opened.begin(), requests.opened.end(), &support::IsDiskOrVolume);
}

const EntryPoint& FindEntryPoint(std::string_view name) {
    const auto* const found = std::find_if(std::begin(kEntryPoints), std::end(kEntryPoints),
                                           [&](const EntryPoint& entry) { return entry.name == name; });
    if (found == std::end(kEntryPoints)) {
        throw std::invalid_argument("no entry point is called " + std::string(name));
    }
    return *found;
}

}  // namespace faults

#include "faults/library.h"

#include "faults/import_hooks.h"
#include "machine/redirect.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace faults {

namespace {

constexpr EntryPoint kEntryPoints[] = {
    {"capture1", 1, nullptr},
    {"capture2", 2, nullptr},
    {"capture3", 3, nullptr},
    {"wmi", 0, &Library::WMIDumpInfo},
    {"disks", 0, &Library::DiskDumpInfo},
    {"volumes", 0, &Library::VolumeDumpInfo},
    {"firmware", 0, &Library::FirmwareDumpInfo},
};

}  // namespace

Library::Library(const std::filesystem::path& file) : module_(LoadLibraryW(file.c_str())) {
    if (module_ == nullptr || !machine::PutModuleOnSimulation(module_)) {
        throw std::runtime_error("the library cannot be loaded: " + file.string());
    }
    Bind(SetEventFunc, "SetEventFunc");
    Bind(SetXmlFormat, "SetXmlFormat");
    Bind(SetupSelectedVolumesList, "SetupSelectedVolumesList");
    Bind(CaptureSystemRestorePointInfo, "CaptureSystemRestorePointInfo");
    Bind(WMIDumpInfo, "WMIDumpInfo");
    Bind(DiskDumpInfo, "DiskDumpInfo");
    Bind(VolumeDumpInfo, "VolumeDumpInfo");
    Bind(FirmwareDumpInfo, "FirmwareDumpInfo");
    InstallImportHooks(module_);
}

Library::~Library() {
    FreeLibrary(module_);
}

template <class Function>
void Library::Bind(Function& function, const char* name) {
    const FARPROC found = machine::RealProcAddress(module_, name);
    if (found == nullptr) {
        throw std::runtime_error(std::string("the library exports no ") + name);
    }
    function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(found));
}

std::span<const EntryPoint> EntryPoints() {
    return kEntryPoints;
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

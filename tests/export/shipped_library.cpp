#include "export/shipped_library.h"

#include "machine/redirect.h"

#include <stdexcept>

namespace {

template <class Function>
void Find(HMODULE module, Function& function, const char* name) {
    const FARPROC found = machine::RealProcAddress(module, name);
    if (found == nullptr) {
        throw std::runtime_error(std::string("no export ") + name);
    }
    function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(found));
}

}  // namespace

ShippedLibrary::ShippedLibrary() : module(LoadLibraryA(ORVANE_DLL_PATH)) {
    if (module == nullptr || !machine::PutModuleOnSimulation(module)) {
        throw std::runtime_error("the library cannot be loaded: " ORVANE_DLL_PATH);
    }
    Find(module, GetOrvaneVersion, "GetOrvaneVersion");
    Find(module, SetEventFunc, "SetEventFunc");
    Find(module, SetXmlFormat, "SetXmlFormat");
    Find(module, SetupSelectedVolumesList, "SetupSelectedVolumesList");
    Find(module, CaptureSystemRestorePointInfo, "CaptureSystemRestorePointInfo");
    Find(module, WMIDumpInfo, "WMIDumpInfo");
    Find(module, DiskDumpInfo, "DiskDumpInfo");
    Find(module, VolumeDumpInfo, "VolumeDumpInfo");
    Find(module, FirmwareDumpInfo, "FirmwareDumpInfo");
}

const ShippedLibrary& ShippedLibrary::Get() {
    static const ShippedLibrary library;
    return library;
}

std::int64_t ShippedLibrary::Select(const std::vector<std::wstring>& volumes) const {
    std::wstring list;
    for (const std::wstring& volume : volumes) {
        list += volume + L'\0';
    }
    list += L'\0';
    return SetupSelectedVolumesList(list.data(), list.size());
}

void ShippedLibrary::ResetSettings() const {
    SetEventFunc(nullptr);
    Select({});
    SetXmlFormat(2);
}

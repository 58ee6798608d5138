#include "export/shipped_library.h"

#include "machine/simulation/redirect.h"

#include <stdexcept>

ShippedLibrary::ShippedLibrary() : host::OrvaneLibrary(ORVANE_DLL_PATH) {
    if (!machine::PutModuleOnSimulation(module())) {
        throw std::runtime_error("the library cannot be put on the simulation");
    }
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

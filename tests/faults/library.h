#pragma once

#include "common/windows.h"
#include "orvane/orvane.h"

#include <filesystem>
#include <span>
#include <string_view>

namespace faults {

/// The shipped library, loaded, put on the simulation and watched (import_hooks.h) for the life of the
/// object.
class Library {
public:
    explicit Library(const std::filesystem::path& file);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    HMODULE module() const { return module_; }

    decltype(&::SetEventFunc) SetEventFunc = nullptr;
    decltype(&::SetXmlFormat) SetXmlFormat = nullptr;
    decltype(&::SetupSelectedVolumesList) SetupSelectedVolumesList = nullptr;
    decltype(&::CaptureSystemRestorePointInfo) CaptureSystemRestorePointInfo = nullptr;
    decltype(&::WMIDumpInfo) WMIDumpInfo = nullptr;
    decltype(&::DiskDumpInfo) DiskDumpInfo = nullptr;
    decltype(&::VolumeDumpInfo) VolumeDumpInfo = nullptr;
    decltype(&::FirmwareDumpInfo) FirmwareDumpInfo = nullptr;

private:
    template <class Function>
    void Bind(Function& function, const char* name);

    HMODULE module_;
};

/// What is called: a capture in a format, or a dump.
struct EntryPoint {
    std::string_view name;
    std::uint32_t format = 0;  // 0: a dump
    void (*Library::*dump)() = nullptr;
};

std::span<const EntryPoint> EntryPoints();

/// Throws std::invalid_argument.
const EntryPoint& FindEntryPoint(std::string_view name);

}  // namespace faults

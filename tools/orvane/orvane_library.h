#pragma once

#include "common/windows.h"
#include "orvane/orvane.h"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace host {

// The library cannot be loaded or lacks an export. what() is UTF-8.
class LibraryError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Orvane.dll, loaded for the lifetime of the object, and its exports.
class OrvaneLibrary {
public:
    // Throws LibraryError.
    explicit OrvaneLibrary(const std::filesystem::path& file);
    ~OrvaneLibrary();
    OrvaneLibrary(const OrvaneLibrary&) = delete;
    OrvaneLibrary& operator=(const OrvaneLibrary&) = delete;

    HMODULE module() const { return module_; }
    // The product version in the file, "9.50.6732.0"; empty if there is none.
    std::string FileVersion() const;

    // NOLINTBEGIN: the members have the names of the exports.
    decltype(&::GetOrvaneVersion) GetOrvaneVersion = nullptr;
    decltype(&::SetEventFunc) SetEventFunc = nullptr;
    decltype(&::SetXmlFormat) SetXmlFormat = nullptr;
    decltype(&::SetupSelectedVolumesList) SetupSelectedVolumesList = nullptr;
    decltype(&::CaptureSystemRestorePointInfo) CaptureSystemRestorePointInfo = nullptr;
    decltype(&::WMIDumpInfo) WMIDumpInfo = nullptr;
    decltype(&::DiskDumpInfo) DiskDumpInfo = nullptr;
    decltype(&::VolumeDumpInfo) VolumeDumpInfo = nullptr;
    decltype(&::FirmwareDumpInfo) FirmwareDumpInfo = nullptr;
    // NOLINTEND

private:
    template <class Function>
    void Bind(Function& function, const char* name);
    void BindAll();

    std::filesystem::path file_;
    HMODULE module_;
};

// The path of the library: in the folder of this program.
std::filesystem::path LibraryPath();

}  // namespace host

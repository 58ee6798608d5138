#include "tools/orvane/orvane_library.h"

#include "machine/description/text.h"
#include "tools/orvane/program_path.h"

#include <array>
#include <cstring>
#include <string_view>

namespace host {

namespace {

// The offset of the version numbers in a version resource: after three words, the key and the padding to 32
// bits.
constexpr std::wstring_view kVersionKey = L"VS_VERSION_INFO";
constexpr std::size_t kFixedInfoOffset =
    (3 * sizeof(WORD) + (kVersionKey.size() + 1) * sizeof(wchar_t) + 3) & ~3U;

std::string Reason(const std::filesystem::path& file, const std::string& what) {
    return machine::Narrow(file.wstring()) + ": " + what;
}

}  // namespace

OrvaneLibrary::OrvaneLibrary(const std::filesystem::path& file)
    : file_(file), module_(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (module_ == nullptr) {
        throw LibraryError(Reason(file, "cannot be loaded, error " + std::to_string(GetLastError())));
    }
    try {
        BindAll();
    } catch (...) {
        FreeLibrary(module_);
        throw;
    }
}

OrvaneLibrary::~OrvaneLibrary() {
    FreeLibrary(module_);
}

template <class Function>
void OrvaneLibrary::Bind(Function& function, const char* name) {
    const FARPROC found = GetProcAddress(module_, name);
    if (found == nullptr) {
        throw LibraryError(Reason(file_, std::string("exports no ") + name));
    }
    function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(found));
}

void OrvaneLibrary::BindAll() {
    Bind(GetOrvaneVersion, "GetOrvaneVersion");
    Bind(SetEventFunc, "SetEventFunc");
    Bind(SetXmlFormat, "SetXmlFormat");
    Bind(SetupSelectedVolumesList, "SetupSelectedVolumesList");
    Bind(CaptureSystemRestorePointInfo, "CaptureSystemRestorePointInfo");
    Bind(WMIDumpInfo, "WMIDumpInfo");
    Bind(DiskDumpInfo, "DiskDumpInfo");
    Bind(VolumeDumpInfo, "VolumeDumpInfo");
    Bind(FirmwareDumpInfo, "FirmwareDumpInfo");
}

std::string OrvaneLibrary::FileVersion() const {
    HRSRC resource =
        FindResourceW(module_, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16 /* RT_VERSION */));
    if (resource == nullptr ||
        SizeofResource(module_, resource) < kFixedInfoOffset + sizeof(VS_FIXEDFILEINFO)) {
        return {};
    }
    HGLOBAL const loaded = LoadResource(module_, resource);
    const auto* const bytes = static_cast<const char*>(loaded == nullptr ? nullptr : LockResource(loaded));
    VS_FIXEDFILEINFO info{};
    if (bytes != nullptr) {
        std::memcpy(&info, bytes + kFixedInfoOffset, sizeof(info));
    }
    if (info.dwSignature != VS_FFI_SIGNATURE) {
        return {};
    }
    return std::to_string(HIWORD(info.dwProductVersionMS)) + "." +
           std::to_string(LOWORD(info.dwProductVersionMS)) + "." +
           std::to_string(HIWORD(info.dwProductVersionLS)) + "." +
           std::to_string(LOWORD(info.dwProductVersionLS));
}

std::filesystem::path LibraryPath() {
    return ProgramPath().replace_filename(L"Orvane.dll");
}

}  // namespace host

#include "common/platform/win_api_wrapper.h"

#include "common/platform/multi_string.h"
#include "common/platform/system_query.h"

#include <array>
#include <cwchar>

namespace win {

namespace {

constexpr std::size_t kFirstPathNamesCharacters = 512;
constexpr std::size_t kFirstDeviceCharacters = 260;
constexpr std::size_t kNameCharacters = 260;

using NameBuffer = std::array<wchar_t, kNameCharacters>;

std::wstring TextOf(const NameBuffer& buffer) {
    return {buffer.data(), wcsnlen(buffer.data(), buffer.size())};
}

// `path` itself where it has one; else `longer`, which is made so.
const wchar_t* WithTrailingBackslash(const std::wstring& path, std::wstring& longer) {
    if (path.ends_with(L'\\')) {
        return path.c_str();
    }
    longer = path + L'\\';
    return longer.c_str();
}

// The entries of an answer of `returned` characters, which must lie in the buffer.
DWORD TakeEntries(const std::vector<wchar_t>& buffer, std::size_t returned,
                  std::vector<std::wstring>& entries) {
    if (returned > buffer.size()) {
        return ERROR_INVALID_DATA;
    }
    entries = SplitMultiString(buffer.data(), returned);
    return ERROR_SUCCESS;
}

}  // namespace

// The failure lines of the wrappers shorten their names, at trace level: compatibility C12, C13
bool WinAPIWrapper::GetVolumePathNamesForVolumeNameW(const std::wstring& volume,
                                                     std::vector<std::wstring>& paths, DWORD& error) {
    const auto query = [&]() -> DWORD {
        std::wstring longer;
        const wchar_t* const name = WithTrailingBackslash(volume, longer);
        std::vector<wchar_t> buffer;
        DWORD length = 0;
        const auto ask = [&](std::vector<wchar_t>& answer, std::size_t& needed) {
            length = 0;
            const DWORD code =
                ErrorUnless(CallBound(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW, FALSE, name,
                                      answer.data(), static_cast<DWORD>(answer.size()), &length));
            needed = length;
            return code;
        };
        const DWORD code =
            GrowAndRetry(buffer, kFirstPathNamesCharacters, static_cast<DWORD>(ERROR_MORE_DATA), ask);
        return code == ERROR_SUCCESS ? TakeEntries(buffer, length, paths) : code;
    };
    return Query(L"win::WinAPIWrapper::GetVolumePathNamesForVolumeNameW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetVolumePathNamesForVolumeName for %s error=%u",
                          volume.c_str(), error);
    });
}

bool WinAPIWrapper::QueryDosDeviceW(const std::wstring& device, std::vector<std::wstring>& targets,
                                    DWORD& error) {
    const wchar_t* const name = device.empty() ? nullptr : device.c_str();
    const auto query = [&]() -> DWORD {
        std::vector<wchar_t> buffer;
        DWORD length = 0;
        const auto ask = [&](std::vector<wchar_t>& answer, std::size_t& /*needed*/) {
            length = CallBound(Kernel32DLL::Get().QueryDosDeviceW, DWORD{0}, name, answer.data(),
                               static_cast<DWORD>(answer.size()));
            return ErrorUnless(length != 0);
        };
        const DWORD code =
            GrowAndRetry(buffer, kFirstDeviceCharacters, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), ask);
        return code == ERROR_SUCCESS ? TakeEntries(buffer, length, targets) : code;
    };
    return Query(L"win::WinAPIWrapper::QueryDosDeviceW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::QueryDosDevice of %s error=%u",
                          name == nullptr ? L"NULL" : name, error);
    });
}

bool WinAPIWrapper::GetDriveTypeW(const std::wstring& root, UINT& drive_type, DWORD& error) {
    const auto query = [&]() -> DWORD {
        std::wstring longer;
        const wchar_t* const path = WithTrailingBackslash(root, longer);
        SetLastError(ERROR_SUCCESS);  // the function itself says nothing of why a type is unknown
        drive_type = CallBound(Kernel32DLL::Get().GetDriveTypeW, UINT{DRIVE_UNKNOWN}, path);
        return ErrorUnless(drive_type != DRIVE_UNKNOWN);
    };
    return Query(L"win::WinAPIWrapper::GetDriveTypeW", error, query,
                 [] { GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDriveType Unknown"); });
}

bool WinAPIWrapper::GetDiskFreeSpaceW(const std::wstring& root, DiskFreeSpace& space, DWORD& error) {
    const auto query = [&] {
        return ErrorUnless(CallBound(Kernel32DLL::Get().GetDiskFreeSpaceW, FALSE, root.c_str(),
                                     &space.sectors_per_cluster, &space.bytes_per_sector,
                                     &space.free_clusters, &space.total_clusters));
    };
    return Query(L"win::WinAPIWrapper::GetDiskFreeSpaceW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDiskFreeSpace for %s error=%u", root.c_str(), error);
    });
}

bool WinAPIWrapper::GetDiskFreeSpaceExW(const std::wstring& root, DiskFreeSpaceEx& space, DWORD& error) {
    const auto query = [&]() -> DWORD {
        ULARGE_INTEGER available{};
        ULARGE_INTEGER total{};
        ULARGE_INTEGER total_free{};
        const DWORD code = ErrorUnless(CallBound(Kernel32DLL::Get().GetDiskFreeSpaceExW, FALSE, root.c_str(),
                                                 &available, &total, &total_free));
        if (code == ERROR_SUCCESS) {
            space = {available.QuadPart, total.QuadPart, total_free.QuadPart};
        }
        return code;
    };
    return Query(L"win::WinAPIWrapper::GetDiskFreeSpaceExW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDiskFreeSpaceEx for %s error=%u", root.c_str(),
                          error);
    });
}

bool WinAPIWrapper::GetVolumeInformationW(const std::wstring& root, VolumeInformation& information,
                                          DWORD& error) {
    const auto query = [&]() -> DWORD {
        NameBuffer label{};
        NameBuffer file_system{};
        const DWORD code =
            ErrorUnless(CallBound(Kernel32DLL::Get().GetVolumeInformationW, FALSE, root.c_str(), label.data(),
                                  static_cast<DWORD>(label.size()), &information.serial_number,
                                  &information.maximum_component_length, &information.file_system_flags,
                                  file_system.data(), static_cast<DWORD>(file_system.size())));
        if (code == ERROR_SUCCESS) {
            information.label = TextOf(label);
            information.file_system = TextOf(file_system);
        }
        return code;
    };
    return Query(L"win::WinAPIWrapper::GetVolumeInformationW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetVolumeInfo on drive %s error=%u", root.c_str(),
                          error);
    });
}

bool WinAPIWrapper::FindFirstVolumeW(std::wstring& volume, UniqueVolumeSearch& search, DWORD& error) {
    const auto query = [&]() -> DWORD {
        NameBuffer name{};
        search.Reset(CallBound(Kernel32DLL::Get().FindFirstVolumeW, HANDLE{INVALID_HANDLE_VALUE}, name.data(),
                               static_cast<DWORD>(name.size())));
        if (!search) {
            return LastFailure();
        }
        volume = TextOf(name);
        return ERROR_SUCCESS;
    };
    return Query(L"win::WinAPIWrapper::FindFirstVolumeW", error, query,
                 [&] { GetLogger().Write(kLogTrace, L"WinAPIWrapper::FindFirstVolume error=%u", error); });
}

bool WinAPIWrapper::FindNextVolumeW(const UniqueVolumeSearch& search, std::wstring& volume, DWORD& error) {
    const auto query = [&]() -> DWORD {
        NameBuffer name{};
        const DWORD code = ErrorUnless(CallBound(Kernel32DLL::Get().FindNextVolumeW, FALSE, search.get(),
                                                 name.data(), static_cast<DWORD>(name.size())));
        if (code == ERROR_SUCCESS) {
            volume = TextOf(name);
        }
        return code;
    };
    return Query(L"win::WinAPIWrapper::FindNextVolumeW", error, query,
                 [&] { GetLogger().Write(kLogTrace, L"WinAPIWrapper::FindNextVolume error=%u", error); });
}

}  // namespace win

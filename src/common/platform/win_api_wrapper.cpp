#include "common/platform/win_api_wrapper.h"

#include "common/platform/system_query.h"

namespace win {

namespace {

constexpr std::size_t kFirstPathNamesCharacters = 512;

// Returns `path` if it ends in a backslash; otherwise builds that text in `longer`.
const std::wstring& WithTrailingBackslash(const std::wstring& path, std::wstring& longer) {
    return path.ends_with(L'\\') ? path : longer.assign(path).append(1, L'\\');
}

}  // namespace

// The failure lines of the wrappers use shortened names and are trace lines: compatibility C12, C13
bool WinAPIWrapper::GetVolumePathNamesForVolumeNameW(const std::wstring& volume,
                                                     std::vector<std::wstring>& paths, DWORD& error) {
    const auto query = [&] {
        std::wstring longer;
        return ListMountPaths(WithTrailingBackslash(volume, longer), kFirstPathNamesCharacters,
                              Retry::kAsLargeAsTold, paths);
    };
    return Query(L"win::WinAPIWrapper::GetVolumePathNamesForVolumeNameW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetVolumePathNamesForVolumeName for %s error=%u",
                          volume.c_str(), error);
    });
}

bool WinAPIWrapper::QueryDosDeviceW(const std::wstring& device, std::vector<std::wstring>& targets,
                                    DWORD& error) {
    const wchar_t* const name = device.empty() ? nullptr : device.c_str();
    const auto query = [&] { return ListDosDeviceTargets(name, targets); };
    return Query(L"win::WinAPIWrapper::QueryDosDeviceW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::QueryDosDevice of %s error=%u",
                          name == nullptr ? L"NULL" : name, error);
    });
}

bool WinAPIWrapper::GetDriveTypeW(const std::wstring& root, UINT& drive_type, DWORD& error) {
    const auto query = [&] {
        std::wstring longer;
        return ReadDriveType(WithTrailingBackslash(root, longer), drive_type);
    };
    return Query(L"win::WinAPIWrapper::GetDriveTypeW", error, query,
                 [] { GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDriveType Unknown"); });
}

bool WinAPIWrapper::GetDiskFreeSpaceW(const std::wstring& root, DiskFreeSpace& space, DWORD& error) {
    const auto query = [&] { return ReadDiskFreeSpace(root, space); };
    return Query(L"win::WinAPIWrapper::GetDiskFreeSpaceW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDiskFreeSpace for %s error=%u", root.c_str(), error);
    });
}

bool WinAPIWrapper::GetDiskFreeSpaceExW(const std::wstring& root, DiskFreeSpaceEx& space, DWORD& error) {
    const auto query = [&] { return ReadDiskFreeSpaceEx(root, space); };
    return Query(L"win::WinAPIWrapper::GetDiskFreeSpaceExW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetDiskFreeSpaceEx for %s error=%u", root.c_str(),
                          error);
    });
}

bool WinAPIWrapper::GetVolumeInformationW(const std::wstring& root, VolumeInformation& information,
                                          DWORD& error) {
    const auto query = [&] { return ReadVolumeInformation(root, kNameCharacters, information); };
    return Query(L"win::WinAPIWrapper::GetVolumeInformationW", error, query, [&] {
        GetLogger().Write(kLogTrace, L"WinAPIWrapper::GetVolumeInfo on drive %s error=%u", root.c_str(),
                          error);
    });
}

bool WinAPIWrapper::FindFirstVolumeW(std::wstring& volume, UniqueVolumeSearch& search, DWORD& error) {
    const auto query = [&] { return ListFirstVolume(kNameCharacters, search, volume); };
    return Query(L"win::WinAPIWrapper::FindFirstVolumeW", error, query,
                 [&] { GetLogger().Write(kLogTrace, L"WinAPIWrapper::FindFirstVolume error=%u", error); });
}

bool WinAPIWrapper::FindNextVolumeW(const UniqueVolumeSearch& search, std::wstring& volume, DWORD& error) {
    const auto query = [&] { return ListNextVolume(kNameCharacters, search, volume); };
    return Query(L"win::WinAPIWrapper::FindNextVolumeW", error, query,
                 [&] { GetLogger().Write(kLogTrace, L"WinAPIWrapper::FindNextVolume error=%u", error); });
}

}  // namespace win

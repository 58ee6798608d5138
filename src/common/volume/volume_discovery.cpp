// Volume enumeration by the volume manager. It uses two independent sources. A volume GUID must be in both,
// so that stale symbolic links do not create phantom volumes.

#include "common/logger/trace.h"
#include "common/platform/case_folding.h"
#include "common/text/decimal_text.h"
#include "common/text/listing_bound.h"
#include "common/volume/volume_manager.h"

#include <algorithm>

namespace bmr_common {

namespace {

constexpr wchar_t kMapFunction[] = L"bmr_common::VolumeManager::GetDeviceNamesMap";

std::wstring WithCode(const wchar_t* text, DWORD error) {
    return text + DecimalText(error);
}

}  // namespace

bool VolumeManager::GetObjectNamesPairList(const UniqueDirectory& directory, const std::wstring& filter,
                                           std::vector<win::DirectoryEntry>& entries, std::wstring& error) {
    return Traced(L"bmr_common::VolumeManager::GetObjectNamesPairList", [&] {
        win::ByteBuffer buffer;
        ULONG context = 0;
        DWORD code = ERROR_SUCCESS;
        win::DirectoryEntry entry;
        for (std::size_t i = 0; code == ERROR_SUCCESS; ++i) {
            if (i == kMostListed) {
                code = ERROR_INVALID_DATA;
                break;
            }
            if (!win::NtAPIWrapper::QueryDirectoryObject(directory, i == 0, context, buffer, entry, code)) {
                break;
            }
            if (StartsWithFolded(entry.name, filter)) {
                entries.push_back(entry);
            }
        }
        if (code != ERROR_NO_MORE_FILES) {
            error = WithCode(L" QueryDirectoryObject failed error=", code);
        }
        return code == ERROR_NO_MORE_FILES;
    });
}

bool VolumeManager::GetDeviceNamesList(const std::wstring& directory_path, const std::wstring& prefix,
                                       std::vector<std::wstring>& names, std::wstring& error) {
    constexpr const wchar_t* kFunction = L"bmr_common::VolumeManager::GetDeviceNamesList";
    return Traced(kFunction, [&] {
        UniqueDirectory directory;
        DWORD code = 0;
        if (!win::NtAPIWrapper::OpenDirectoryObject(directory_path, directory, code)) {
            error = directory_path + L" OpenDirectoryObject" + L" failed";
            return false;
        }
        std::vector<win::DirectoryEntry> entries;
        const bool listed = GetObjectNamesPairList(directory, prefix, entries, error);
        if (!win::NtAPIWrapper::CloseObject(directory, code)) {
            GetLogger().Write(kLogTrace, L"%s - ZwClose %s failed", kFunction, directory_path.c_str());
        }
        if (!listed) {
            error = directory_path + error;
            return false;
        }
        for (win::DirectoryEntry& entry : entries) {
            names.push_back(std::move(entry.name));
        }
        return true;
    });
}

bool VolumeManager::GetVolumeGUIDsFromFindFirstVolume(std::vector<std::wstring>& volumes,
                                                      std::wstring& error) {
    return Traced(L"bmr_common::VolumeManager::GetVolumeGUIDsFromFindFirstVolume", [&] {
        std::wstring volume;
        UniqueVolumeSearch search;
        DWORD code = 0;
        if (!win::WinAPIWrapper::FindFirstVolumeW(volume, search, code)) {
            error = WithCode(L" failed to FindFirstVolume error=", code);
            return false;
        }
        do {
            volumes.push_back(std::move(volume));
            if (volumes.size() == kMostListed) {
                code = ERROR_INVALID_DATA;
                break;
            }
        } while (win::WinAPIWrapper::FindNextVolumeW(search, volume, code));
        if (code != ERROR_NO_MORE_FILES) {
            error = WithCode(L" failed to FindNextVolume error=", code);
            return false;
        }
        return true;
    });
}

bool VolumeManager::GetDeviceNamesMap(DeviceNamesMap& map, std::wstring& error) {
    return Traced(kMapFunction, [&] {
        std::vector<std::wstring> device_volumes;
        std::vector<std::wstring> links;
        if (!GetDeviceNamesList(L"\\Device", L"HarddiskVolume", device_volumes, error) ||
            !GetDeviceNamesList(L"\\GLOBAL??", L"Volume{", links, error)) {
            return false;
        }
        if (links.empty()) {
            // Returns true without any volume: compatibility C134
            GetLogger().Write(kLogError, L"%s - volume list is empty", kMapFunction);
            return true;
        }
        if (!AddLinkedVolumes(links, map, error)) {
            return false;
        }
        std::wstring device;
        for (const std::wstring& name : device_volumes) {
            map.try_emplace(device.assign(L"\\Device\\").append(name));
        }
        return true;
    });
}

bool VolumeManager::AddLinkedVolumes(const std::vector<std::wstring>& links, DeviceNamesMap& map,
                                     std::wstring& error) {
    std::vector<std::wstring> known;
    if (!GetVolumeGUIDsFromFindFirstVolume(known, error)) {
        return false;
    }
    std::sort(known.begin(), known.end(), LessFolded());
    std::wstring guid_path;
    for (const std::wstring& link : links) {
        std::vector<std::wstring> targets;
        DWORD code = 0;
        if (!win::WinAPIWrapper::QueryDosDeviceW(link, targets, code) || targets.empty()) {
            GetLogger().Write(kLogTrace, L"%s - skip volume link %s without a target", kMapFunction,
                              link.c_str());
            continue;
        }
        guid_path.assign(L"\\\\?\\").append(link).push_back(L'\\');
        if (!std::binary_search(known.begin(), known.end(), guid_path, LessFolded())) {
            continue;
        }
        if (!map.try_emplace(std::move(targets.front()), guid_path).second) {
            GetLogger().Write(kLogTrace, L"%s - skip saving alias volume GUID %s", kMapFunction,
                              guid_path.c_str());
        }
    }
    return true;
}

}  // namespace bmr_common

#include "capture/environment/boot_volumes.h"

#include "common/logger/orvane_logger.h"
#include "common/platform/privileges.h"
#include "common/platform/registry.h"
#include "common/text/listing_bound.h"
#include "common/text/scope_exit.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr wchar_t kSystemStartOptions[] = L"SystemStartOptions";

bool NotFound(const wchar_t* message, const std::wstring& device) {
    GetLogger().Write(kLogError, message, device.c_str());
    return false;
}

bool SystemVolumeNotFound(const OSInfo& os) {
    return NotFound(
        L"Failed to find System volume '%s'. This happens if disk has been converted to Dynamic or after "
        L"BMR restore. Rebooting usually fixes problem.",
        os.SystemDevice);
}

bool BootVolumeNotFound(const OSInfo& os) {
    return NotFound(
        L"Failed to find Boot volume '%s'. This happens if disk has been converted to Dynamic or after "
        L"BMR restore. Rebooting usually fixes problem.",
        os.BootDevice);
}

void CopyIdentity(const OSInfo& os, BootConfig& boot_config) {
    boot_config.m_strBootFolder = os.WindowsDirectory;
    boot_config.m_strOS = os.Name;
    boot_config.numeric_version_string = os.Version;
    boot_config.product_type = os.ProductType;
    boot_config.m_OSArchitecture = os.OSArchitecture;
}

// The value's data unchanged, including a stored null terminator: compatibility C98
std::wstring TextOf(const RegistryValueCursor& cursor) {
    std::wstring text(cursor.data_length / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), cursor.data.data(), text.size() * sizeof(wchar_t));
    return text;
}

// Enumerates the key's values until the name matches exactly. Returns the status of the last query, or
// ERROR_INVALID_DATA if the key has too many values. The search and its case sensitivity: compatibility C132
LSTATUS FindStartOptions(HKEY key, std::wstring& options) {
    constexpr std::size_t kDataBytes = 16383;
    RegistryValueCursor cursor(key, kDataBytes);
    LSTATUS status = CRegistry::FindFirstValue(cursor);
    for (std::size_t i = 0; status == ERROR_SUCCESS && cursor.Name() != kSystemStartOptions; ++i) {
        status = i < kMostListed ? CRegistry::FindNextValue(cursor) : ERROR_INVALID_DATA;
    }
    if (status == ERROR_SUCCESS) {
        options = TextOf(cursor);
    }
    return status;
}

bool OpenControlKey(CRegistry& registry, HKEY& key) {
    try {
        return registry.OpenKey(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control", KEY_READ, key);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// Reads the options and closes the key.
LSTATUS ReadStartOptions(CRegistry& registry, HKEY key, std::wstring& options) {
    const ScopeExit close([&] { registry.CloseKey(key); });
    try {
        return FindStartOptions(key, options);
    } catch (const std::bad_alloc&) {
        return ERROR_OUTOFMEMORY;
    }
}

}  // namespace

void SortVolumeTable(std::vector<::Volume>& volumes) {
    std::stable_sort(volumes.begin(), volumes.end(), [](const ::Volume& left, const ::Volume& right) {
        return left.VolumeLetter < right.VolumeLetter;
    });
}

bool FindBootAndSystemVolumes(std::vector<::Volume>& volumes, std::vector<DriveLetterEntry>& drive_letters,
                              BootConfig& boot_config, const OSInfo& os) {
    CopyIdentity(os, boot_config);
    bool system_found = false;
    bool boot_found = false;
    drive_letters.reserve(volumes.size());
    for (::Volume& volume : volumes) {
        // Volumes without a letter get a row too: compatibility C113
        drive_letters.push_back({volume.m_GUID, volume.VolumeLetter});
        // The comparison is case-sensitive, and the last match wins: compatibility C133, C116
        if (volume.DeviceName == os.SystemDevice) {
            boot_config.m_guidSystemVolume = volume.m_GUID;
            volume.SystemVolume = true;
            system_found = true;
        }
        if (volume.DeviceName == os.BootDevice) {
            boot_config.m_guidBootVolume = volume.m_GUID;
            volume.BootVolume = true;
            boot_found = true;
        }
    }
    // A missing boot volume is not reported in addition: compatibility C41
    if (!system_found) {
        return SystemVolumeNotFound(os);
    }
    return boot_found ? GetBootOptions(boot_config.m_strBootOptions) : BootVolumeNotFound(os);
}

bool GetBootOptions(std::wstring& options) {
    // Reading this key needs no privilege: compatibility C131
    EnableBackupPrivileges();
    CRegistry registry;
    HKEY key = nullptr;
    if (!OpenControlKey(registry, key)) {
        GetLogger().Write(kLogError, L"GetBootOptions Failed to open registry");
        return false;
    }
    const LSTATUS status = ReadStartOptions(registry, key, options);
    if (status != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"GetBootOptions failed to find %s error=%d", kSystemStartOptions,
                          status);
        return false;
    }
    return true;
}

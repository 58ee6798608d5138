// The flat enumerator: drive letters and the enumeration of volumes.

#include "common/enumdisk/enum_disk.h"
#include "common/logger/trace.h"
#include "common/text/multi_string.h"

#include <cstring>
#include <cwctype>
#include <new>
#include <span>
#include <utility>

namespace {

constexpr wchar_t kAssertionSource[] = L"src/common/enumdisk";

bool Assert(bool condition, int line, const wchar_t* text) {
    if (!condition) {
        LogAssertionFailure(kAssertionSource, line, text);
    }
    return condition;
}

// Buffer size for volume names, labels and file system names.
constexpr DWORD kWalkNameCharacters = 255;

std::vector<std::wstring> MountPathsOf(const std::wstring& volume) {
    constexpr std::size_t kCharacters = 4096;
    std::vector<std::wstring> paths;
    const DWORD error = win::ListMountPaths(volume, kCharacters, win::Retry::kNever, paths);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogWarning,
                          L"EnumDisk::GetDrives on %s GetVolumePathNamesForVolumeNameW error=0x%x %d",
                          volume.c_str(), error, error);
    }
    return paths;
}

// Opens a volume to query its extents; retries for reading only if write access is refused:
// compatibility C138
UniqueFile OpenVolumeForExtents(const std::wstring& volume) {
    constexpr const wchar_t* kFailure = L"OpenVolumeForExtents: Opening the drive %s failed Error = %d";
    UniqueFile file;
    DWORD error = win::OpenDevice(volume, {.access = GENERIC_READ | GENERIC_WRITE}, file);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogWarning, kFailure, volume.c_str(), error);
        error = win::OpenDevice(volume, {.access = GENERIC_READ, .share_mode = FILE_SHARE_READ}, file);
        if (error != ERROR_SUCCESS) {
            GetLogger().Write(kLogError, kFailure, volume.c_str(), error);
        }
    }
    return file;
}

// The size times the count plus one, plus one byte: compatibility C139
std::size_t NextExtentBytes(const win::ByteBuffer& answer) {
    std::uint32_t count = 0;
    std::memcpy(&count, answer.data(), sizeof(count));  // NumberOfDiskExtents
    return answer.size() * (std::size_t{count} + 1) + 1;
}

}  // namespace

bool EnumDisk::IsDriveLetter(const wchar_t* mount_path, std::size_t length) const {
    constexpr std::size_t kRootLength = 3;
    return Assert(mount_path != nullptr, __LINE__, L"NULL != mount_path") && length == kRootLength &&
           std::iswalpha(mount_path[0]) != 0 && mount_path[1] == L':' && mount_path[2] == L'\\';
}

std::wstring EnumDisk::GetDriveLetter(const wchar_t* volume_name, const wchar_t* mount_paths,
                                      std::size_t length) {
    const wchar_t* const name =
        Assert(volume_name != nullptr, __LINE__, L"NULL != volume_name") ? volume_name : L"";
    const bool has_paths = Assert(mount_paths != nullptr, __LINE__, L"NULL != mount_paths");
    return DriveLetterAmong(name,
                            has_paths ? SplitMultiString(mount_paths, length) : std::vector<std::wstring>());
}

std::wstring EnumDisk::DriveLetterAmong(const std::wstring& volume_name,
                                        const std::vector<std::wstring>& mount_paths) const {
    const std::wstring* first = nullptr;  // alphabetically first
    for (const std::wstring& path : mount_paths) {
        if (IsDriveLetter(path.c_str(), path.size())) {
            first = first == nullptr || path < *first ? &path : first;
        } else {
            GetLogger().Write(kLogTrace,
                              L"EnumDisk::GetDriveLetter %s volume mount path %s is not a drive letter",
                              volume_name.c_str(), path.c_str());
        }
    }
    if (first == nullptr) {
        GetLogger().Write(
            kLogTrace,
            L"EnumDisk::GetDriveLetter %s volume no appropriate drive letter found (checked %d names), "
            L"it will be displayed by its label or GUID in the application's UI",
            volume_name.c_str(), static_cast<int>(mount_paths.size()));
        return {};
    }
    return *first;
}

bool EnumDisk::QueryExtents(const std::wstring& volume, win::ByteBuffer& extents) {
    const UniqueFile file = OpenVolumeForExtents(volume);
    if (!file) {
        return false;
    }
    constexpr win::Growth kGrowth{
        .first_bytes = 32, .too_small = ERROR_MORE_DATA, .next_size = NextExtentBytes};
    const DWORD error = win::ReadVolumeExtents(file, kGrowth, extents);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError,
                          L"GetVolumeExtents IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS %s failed error=0x%x %d",
                          volume.c_str(), error, error);
    }
    return error == ERROR_SUCCESS;
}

// The log lines name functions that do not exist: compatibility C10
EnumDisk::ExtentResult EnumDisk::GetVolumeExtents(const std::wstring& volume, DriveRow& drive) {
    win::ByteBuffer buffer;
    try {
        if (!QueryExtents(volume, buffer)) {
            return ExtentResult::kFailed;
        }
    } catch (const std::bad_alloc&) {  // not enough memory for the number of extents that the volume reports
        return ExtentResult::kFailed;
    }
    const std::span<const DISK_EXTENT> extents = win::ExtentsIn(buffer);
    for (const DISK_EXTENT& extent : extents) {
        TraceMessage(L"GetVolumeExtents: DriveLetter:%s diskNum=%u offset:%I64d Size:%I64d", volume.c_str(),
                     extent.DiskNumber, extent.StartingOffset.QuadPart, extent.ExtentLength.QuadPart);
    }
    if (extents.size() == 1) {
        drive.disk_number = extents.front().DiskNumber;
        drive.offset = extents.front().StartingOffset.QuadPart;
        return ExtentResult::kSingle;
    }
    if (extents.empty()) {
        GetLogger().Write(kLogWarning, L"GetVolumeExtentsInternal on %s extents.size() == 0", volume.c_str());
        return ExtentResult::kFailed;
    }
    GetLogger().Write(kLogTrace, L"GetVolumeExtentsInternal on %s extents.size() > 1", volume.c_str());
    return ExtentResult::kSeveral;
}

void EnumDisk::GetVolumeInfo(DriveRow& drive) {
    constexpr const wchar_t* kFunction = L"EnumDisk::GetVolumeInfo";
    Traced(kFunction, [&] {
        if (drive.letter.empty()) {
            GetLogger().Write(kLogTrace, L"%s GetVolumeInformation 'empty' drive letter passed in",
                              kFunction);
            return;
        }
        const std::wstring root = drive.letter + L"\\";
        win::VolumeInformation information;
        const DWORD error = win::ReadVolumeInformation(root, kWalkNameCharacters, information);
        if (error != ERROR_SUCCESS) {
            GetLogger().Write(kLogTrace, L"EnumDisk::GetVolumeInfo GetVolumeInformation of %s error=0x%x %d",
                              root.c_str(), error, error);
            return;
        }
        drive.file_system = std::move(information.file_system);
    });
}

bool EnumDisk::DescribeDrive(const std::wstring& volume, DriveRow& drive) {
    const std::vector<std::wstring> paths = MountPathsOf(volume);
    UINT type = DRIVE_UNKNOWN;
    win::ReadDriveType(volume, type);
    GetLogger().Write(kLogTrace, L"EnumDisk::GetDrives volume %s is type %d", volume.c_str(), type);
    if (type == DRIVE_UNKNOWN) {
        GetLogger().Write(kLogWarning, L"EnumDisk::GetDrives %s unknown disk type", volume.c_str());
    }
    if (type == DRIVE_NO_ROOT_DIR) {
        GetLogger().Write(kLogWarning, L"EnumDisk::GetDrives %s no root dir on the drive", volume.c_str());
    }
    if (type != DRIVE_FIXED) {
        return false;
    }
    drive.volume = volume;
    // For a folder, the first two characters of its path: compatibility C93
    drive.letter = paths.empty() ? std::wstring() : paths.front().substr(0, 2);
    std::wstring device = volume;
    if (device.ends_with(L'\\')) {
        device.pop_back();
    }
    switch (GetVolumeExtents(device, drive)) {
        case ExtentResult::kFailed:
            GetLogger().Write(kLogWarning, L"EnumDisk::GetDrives skipping %s", volume.c_str());
            return false;
        case ExtentResult::kSeveral:
            GetLogger().Write(kLogTrace,
                              L"EnumDisk::GetDrives volume %s ignoring error from GetVolumeExtentsFromGUID",
                              volume.c_str());
            break;
        case ExtentResult::kSingle:
            break;
    }
    GetVolumeInfo(drive);
    return true;
}

bool EnumDisk::GetDrives(std::vector<DriveRow>& drives) {
    std::wstring first;
    UniqueVolumeSearch search;
    DWORD error = win::ListFirstVolume(kWalkNameCharacters, search, first);
    // The log lines end in a line feed: compatibility C17
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"EnumDisk::GetDrives on FindFirstVolumeW failed with error code %d\n",
                          error);
        return false;
    }
    error = win::VisitVolumes(kWalkNameCharacters, search, first, [&](const std::wstring& volume) {
        DriveRow drive;
        if (DescribeDrive(volume, drive)) {
            drives.push_back(std::move(drive));
        }
    });
    if (error != ERROR_NO_MORE_FILES) {
        GetLogger().Write(kLogError, L"EnumDisk::GetDrives FindNextVolumeW failed with error code %d\n",
                          error);
    }
    return error == ERROR_NO_MORE_FILES;
}

#include "common/enumdisk/fixed_volumes.h"

#include "common/enumdisk/enum_disk.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/storage_queries.h"
#include "common/text/byte_range.h"

#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace {

// A volume that is being read into the table.
struct Candidate {
    const std::wstring& name;  // volume GUID path
    std::wstring drive_name;   // "C:", or empty
    ::Volume& volume;
};

// Logs a failed step for a volume, with the error code in hexadecimal and decimal. Always returns false:
// compatibility C161
bool Failed(int level, const wchar_t* format, const Candidate& candidate, DWORD error) {
    GetLogger().Write(level, format, candidate.name.c_str(), candidate.drive_name.c_str(), error, error);
    return false;
}

std::wstring getDriveNameForVolumeName(const std::wstring& volume) {
    DWORD drives = 0;
    DWORD error = win::ReadLogicalDrives(drives);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"getDriveNameForVolumeName GetLogicalDrives returned error 0x%x %d",
                          error, error);
        return {};
    }
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
        if ((drives >> (letter - L'A') & 1U) == 0) {
            continue;
        }
        std::wstring drive{letter, L':'};
        const std::wstring root = drive + L'\\';
        std::wstring mounted;
        error = win::ReadVolumeNameOf(root, mounted);
        if (error != ERROR_SUCCESS) {
            GetLogger().Write(
                kLogWarning,
                L"getDriveNameForVolumeName GetVolumeNameForVolumeMountPoint for %s returned error 0x%x %d",
                root.c_str(), error, error);
        } else if (mounted == volume) {
            return drive;
        }
    }
    return {};
}

bool getDeviceName(const std::wstring& volume, std::wstring& device_name) {
    constexpr std::wstring_view kPrefix = L"\\\\?\\";
    if (!volume.starts_with(kPrefix) || !volume.ends_with(L'\\') || volume.size() <= kPrefix.size()) {
        GetLogger().Write(kLogError, L"getDeviceName of %s error ERROR_BAD_PATHNAME", volume.c_str());
        return false;
    }
    const std::wstring dos_name = volume.substr(kPrefix.size(), volume.size() - kPrefix.size() - 1);
    std::vector<std::wstring> targets;
    DWORD error = win::ListDosDeviceTargets(dos_name.c_str(), targets);
    if (error == ERROR_SUCCESS && targets.empty()) {
        error = ERROR_INVALID_DATA;
    }
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"getDeviceName of %s error=0x%x %d", volume.c_str(), error, error);
        return false;
    }
    device_name = targets.front();
    return true;
}

bool ReadVolumeTexts(const Candidate& candidate) {
    win::VolumeInformation information;
    const DWORD error = win::ReadVolumeInformation(candidate.name, win::kNameCharacters, information);
    if (error != ERROR_SUCCESS) {
        return Failed(kLogWarning, L"getVolumeInfo for %s %s GetVolumeInformation failed error=0x%x %d",
                      candidate, error);
    }
    candidate.volume.Label = std::move(information.label);
    candidate.volume.Serial = information.serial_number;
    candidate.volume.Flags = information.file_system_flags;
    candidate.volume.FileSystem = std::move(information.file_system);
    return true;
}

bool ReadExtents(const Candidate& candidate, const UniqueFile& file) {
    constexpr win::Growth kGrowth{.first_bytes = 512, .too_small = ERROR_MORE_DATA};
    win::ByteBuffer buffer;
    DWORD error = ERROR_SUCCESS;
    try {
        error = win::ReadVolumeExtents(file, kGrowth, buffer);
    } catch (const std::bad_alloc&) {
        error = ERROR_OUTOFMEMORY;
    }
    // A fixed volume without extents would look like one at the start of disk 0.
    if (error == ERROR_SUCCESS && win::ExtentsIn(buffer).empty()) {
        error = ERROR_INVALID_DATA;
    }
    if (error != ERROR_SUCCESS) {
        return Failed(kLogWarning,
                      L"getVolumeInfo for %s %s DeviceIoControl IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS failed "
                      L"error=0x%x %d",
                      candidate, error);
    }
    ::Volume& volume = candidate.volume;
    for (const DISK_EXTENT& extent : win::ExtentsIn(buffer)) {
        DiskExtent row;
        row.m_GUID = volume.m_GUID;
        row.m_DiskNumber = extent.DiskNumber;
        row.m_offsetPartition = static_cast<std::uint64_t>(extent.StartingOffset.QuadPart);
        row.m_Size = static_cast<std::uint64_t>(extent.ExtentLength.QuadPart);
        volume.extents.push_back(row);
    }
    volume.m_DiskNumber = volume.extents.front().m_DiskNumber;
    volume.m_offsetPartition = volume.extents.front().m_offsetPartition;
    return true;
}

// Reads the partition number, and the partition length, which is used if the volume's own length cannot be
// read.
bool ReadPartition(const Candidate& candidate, const UniqueFile& file, std::uint64_t& partition_length) {
    PARTITION_INFORMATION partition{};
    const DWORD error = win::ReadPartitionInformation(file, partition);
    if (error != ERROR_SUCCESS) {
        return Failed(
            kLogWarning,
            L"getVolumeInfo for %s %s DeviceIoControl IOCTL_DISK_GET_PARTITION_INFO failed error=0x%x %d",
            candidate, error);
    }
    candidate.volume.m_PartitionNumber = static_cast<std::int32_t>(partition.PartitionNumber);
    for (DiskExtent& extent : candidate.volume.extents) {
        extent.m_PartitionNumber = candidate.volume.m_PartitionNumber;
    }
    partition_length = static_cast<std::uint64_t>(partition.PartitionLength.QuadPart);
    return true;
}

bool ReadUsedSpace(const Candidate& candidate) {
    win::DiskFreeSpaceEx space;
    const DWORD error = win::ReadDiskFreeSpaceEx(candidate.name, space);
    if (error != ERROR_SUCCESS) {
        return Failed(kLogWarning, L"getVolumeInfo for %s %s GetDiskFreeSpaceEx failed error=0x%x %d",
                      candidate, error);
    }
    candidate.volume.m_FileSystemUsedSpace = UsedOf(space.total, space.total_free);
    return true;
}

void ReadBlockSize(const Candidate& candidate) {
    win::DiskFreeSpace space;
    if (win::ReadDiskFreeSpace(candidate.name, space) == ERROR_SUCCESS) {
        candidate.volume.BlockSize = space.sectors_per_cluster * space.bytes_per_sector;
    }
}

void ReadVolumeSize(const Candidate& candidate, const UniqueFile& file, std::uint64_t partition_length) {
    std::int64_t length = 0;
    const DWORD error = win::ReadLength(file, length);
    candidate.volume.m_Size = static_cast<std::uint64_t>(length);
    if (error != ERROR_SUCCESS) {
        Failed(
            kLogWarning,
            L"getVolumeInfo %s %s DeviceIoControl IOCTL_DISK_GET_LENGTH_INFO failed error=0x%x %d (will use "
            L"partition length)",
            candidate, error);
        candidate.volume.m_Size = partition_length;
    }
}

std::wstring VolumeLetterOf(const std::wstring& volume) {
    std::vector<std::wstring> paths;
    const DWORD error = win::ListMountPaths(volume, win::kNameCharacters, win::Retry::kAsLargeAsTold, paths);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogWarning,
                          L"getVolumeInfo for %s GetVolumePathNamesForVolumeName failed error=0x%x %d",
                          volume.c_str(), error, error);
        return {};
    }
    return EnumDisk().DriveLetterAmong(volume, paths);
}

bool getVolumeInfo(const Candidate& candidate) {
    ::Volume& volume = candidate.volume;
    volume.Name = candidate.name;
    volume.m_GUID = candidate.name;
    volume.VolumeLetter = VolumeLetterOf(candidate.name);
    if (!getDeviceName(candidate.name, volume.DeviceName) || !ReadVolumeTexts(candidate)) {
        return false;
    }
    // A volume without a drive letter is opened by its volume GUID path without the trailing backslash, which
    // names the device.
    const std::wstring device = candidate.drive_name.empty()
                                    ? candidate.name.substr(0, candidate.name.size() - 1)
                                    : L"\\\\.\\" + candidate.drive_name;
    UniqueFile file;
    const DWORD error = win::OpenDevice(device, {.access = GENERIC_READ}, file);
    if (error != ERROR_SUCCESS) {
        return Failed(kLogWarning, L"getVolumeInfo for %s %s CreateFile failed error=0x%x %d", candidate,
                      error);
    }
    if (!ReadExtents(candidate, file)) {
        return false;
    }
    bool is_gpt = false;
    if (DriveIsGPT(volume.m_DiskNumber, is_gpt) && is_gpt) {
        GetLogger().Write(kLogTrace, L"getVolumeInfo GPT volume detected %s %s", candidate.name.c_str(),
                          candidate.drive_name.c_str());
    }
    std::uint64_t partition_length = 0;
    if (!ReadPartition(candidate, file, partition_length) || !ReadUsedSpace(candidate)) {
        return false;
    }
    ReadBlockSize(candidate);
    ReadVolumeSize(candidate, file, partition_length);
    return true;
}

std::optional<::Volume> DescribeFixedVolume(const std::wstring& name) {
    UINT type = DRIVE_UNKNOWN;
    win::ReadDriveType(name, type);
    if (type == DRIVE_UNKNOWN) {
        GetLogger().Write(kLogError, L"getFixedVolumes failed to get drive type of %s", name.c_str());
    }
    if (type != DRIVE_FIXED) {
        return {};
    }
    ::Volume volume;
    const Candidate candidate{name, getDriveNameForVolumeName(name), volume};
    if (!getVolumeInfo(candidate)) {
        GetLogger().Write(kLogWarning, L"getFixedVolumes skipping volume %s %s due to errors", name.c_str(),
                          candidate.drive_name.c_str());
        return {};
    }
    return volume;
}

bool ListFixedVolumes(std::vector<::Volume>& volumes) {
    std::wstring first;
    UniqueVolumeSearch search;
    DWORD error = win::ListFirstVolume(win::kNameCharacters, search, first);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"getFixedVolumes: FindFirstVolume failed error=0x%x %d", error, error);
        return false;
    }
    error = win::VisitVolumes(win::kNameCharacters, search, first, [&](const std::wstring& name) {
        std::optional<::Volume> volume = DescribeFixedVolume(name);
        if (volume) {
            volumes.push_back(std::move(*volume));
        }
    });
    if (error != ERROR_NO_MORE_FILES) {
        // Logged, but not a failure: compatibility C135
        GetLogger().Write(kLogError, L"getFixedVolumes: FindNextVolume failed error=0x%x %d", error, error);
    }
    return true;
}

}  // namespace

bool getFixedVolumes(std::vector<::Volume>& volumes) {
    volumes.clear();
    if (!ListFixedVolumes(volumes)) {
        return false;
    }
    assignPartitionNumbers(volumes);
    assignDriveDetails(volumes);
    return true;
}

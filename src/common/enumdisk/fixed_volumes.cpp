#include "common/enumdisk/fixed_volumes.h"

#include "common/enumdisk/device_files.h"
#include "common/enumdisk/enum_disk.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/byte_range.h"
#include "common/platform/device_control.h"
#include "common/platform/listing_bound.h"
#include "common/platform/multi_string.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <new>
#include <optional>

namespace {

constexpr std::size_t kNameCharacters = 260;

using NameBuffer = std::array<wchar_t, kNameCharacters>;

std::wstring TextOf(const NameBuffer& buffer) {
    return {buffer.data(), wcsnlen(buffer.data(), buffer.size())};
}

// One volume on its way into the table.
struct Candidate {
    const std::wstring& name;  // volume GUID path
    std::wstring drive_name;   // "C:", or empty
    ::Volume& volume;
};

// Logs a failed step of a volume, with the error in both bases; always false: compatibility C161
bool Failed(int level, const wchar_t* format, const Candidate& candidate, DWORD error) {
    GetLogger().Write(level, format, candidate.name.c_str(), candidate.drive_name.c_str(), error, error);
    return false;
}

std::wstring getDriveNameForVolumeName(const std::wstring& volume) {
    const DWORD drives = CallBound(Kernel32DLL::Get().GetLogicalDrives, DWORD{0});
    if (drives == 0) {
        const DWORD error = win::LastFailure();
        GetLogger().Write(kLogError, L"getDriveNameForVolumeName GetLogicalDrives returned error 0x%x %d",
                          error, error);
        return {};
    }
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
        if ((drives >> (letter - L'A') & 1U) == 0) {
            continue;
        }
        std::array<wchar_t, 4> drive{};
        std::array<wchar_t, 5> root{};
        _snwprintf(drive.data(), drive.size() - 1, L"%c:", letter);
        _snwprintf(root.data(), root.size() - 1, L"%c:\\", letter);
        NameBuffer mounted{};
        if (CallBound(Kernel32DLL::Get().GetVolumeNameForVolumeMountPointW, FALSE, root.data(),
                      mounted.data(), static_cast<DWORD>(mounted.size())) == FALSE) {
            const DWORD error = win::LastFailure();
            GetLogger().Write(
                kLogWarning,
                L"getDriveNameForVolumeName GetVolumeNameForVolumeMountPoint for %s returned error 0x%x %d",
                root.data(), error, error);
        } else if (TextOf(mounted) == volume) {
            return drive.data();
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
    std::vector<wchar_t> buffer;
    DWORD length = 0;
    const auto ask = [&](std::vector<wchar_t>& answer, std::size_t& /*needed*/) {
        length = CallBound(Kernel32DLL::Get().QueryDosDeviceW, DWORD{0}, dos_name.c_str(), answer.data(),
                           static_cast<DWORD>(answer.size()));
        return win::ErrorUnless(length != 0);
    };
    DWORD error =
        win::GrowAndRetry(buffer, kNameCharacters, static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), ask);
    const std::vector<std::wstring> targets =
        error == ERROR_SUCCESS ? SplitMultiString(buffer.data(), std::min<std::size_t>(length, buffer.size()))
                               : std::vector<std::wstring>();
    if (targets.empty()) {
        error = error == ERROR_SUCCESS ? static_cast<DWORD>(ERROR_INVALID_DATA) : error;
        GetLogger().Write(kLogError, L"getDeviceName of %s error=0x%x %d", volume.c_str(), error, error);
        return false;
    }
    device_name = targets.front();
    return true;
}

bool ReadVolumeInformation(const Candidate& candidate) {
    NameBuffer label{};
    NameBuffer file_system{};
    DWORD serial = 0;
    DWORD component_length = 0;
    DWORD flags = 0;
    if (CallBound(Kernel32DLL::Get().GetVolumeInformationW, FALSE, candidate.name.c_str(), label.data(),
                  static_cast<DWORD>(label.size()), &serial, &component_length, &flags, file_system.data(),
                  static_cast<DWORD>(file_system.size())) == FALSE) {
        return Failed(kLogWarning, L"getVolumeInfo for %s %s GetVolumeInformation failed error=0x%x %d",
                      candidate, win::LastFailure());
    }
    candidate.volume.Label = TextOf(label);
    candidate.volume.Serial = serial;
    candidate.volume.Flags = flags;
    candidate.volume.FileSystem = TextOf(file_system);
    return true;
}

const VOLUME_DISK_EXTENTS& ExtentList(const win::ByteBuffer& buffer) {
    return *reinterpret_cast<const VOLUME_DISK_EXTENTS*>(buffer.data());
}

bool ReadExtents(const Candidate& candidate, const UniqueFile& file) {
    constexpr std::size_t kFirstBytes = 512;
    win::ByteBuffer buffer;
    DWORD error = ERROR_SUCCESS;
    try {
        error = win::ReadGrowingControl(file, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, kFirstBytes,
                                        ERROR_MORE_DATA, buffer, win::IsWholeExtentList);
    } catch (const std::bad_alloc&) {
        error = ERROR_OUTOFMEMORY;
    }
    // A fixed volume that lies nowhere could not be told from one at the start of the first disk.
    if (error == ERROR_SUCCESS && ExtentList(buffer).NumberOfDiskExtents == 0) {
        error = ERROR_INVALID_DATA;
    }
    if (error != ERROR_SUCCESS) {
        return Failed(kLogWarning,
                      L"getVolumeInfo for %s %s DeviceIoControl IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS failed "
                      L"error=0x%x %d",
                      candidate, error);
    }
    ::Volume& volume = candidate.volume;
    const VOLUME_DISK_EXTENTS& list = ExtentList(buffer);
    const DISK_EXTENT* const first = list.Extents;
    for (const DISK_EXTENT* extent = first; extent != first + list.NumberOfDiskExtents; ++extent) {
        DiskExtent row;
        row.m_GUID = volume.m_GUID;
        row.m_DiskNumber = extent->DiskNumber;
        row.m_offsetPartition = static_cast<std::uint64_t>(extent->StartingOffset.QuadPart);
        row.m_Size = static_cast<std::uint64_t>(extent->ExtentLength.QuadPart);
        volume.extents.push_back(row);
    }
    volume.m_DiskNumber = volume.extents.front().m_DiskNumber;
    volume.m_offsetPartition = volume.extents.front().m_offsetPartition;
    return true;
}

// The partition's number, and its length where the volume itself does not tell one.
bool ReadPartition(const Candidate& candidate, const UniqueFile& file, std::uint64_t& partition_length) {
    PARTITION_INFORMATION partition{};
    DWORD returned = 0;
    DWORD error = win::SendControl(file, IOCTL_DISK_GET_PARTITION_INFO, nullptr, 0, &partition,
                                   sizeof(partition), returned);
    if (error == ERROR_SUCCESS && returned != sizeof(partition)) {
        error = ERROR_INVALID_DATA;
    }
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
    ULARGE_INTEGER available{};
    ULARGE_INTEGER total{};
    ULARGE_INTEGER total_free{};
    if (CallBound(Kernel32DLL::Get().GetDiskFreeSpaceExW, FALSE, candidate.name.c_str(), &available, &total,
                  &total_free) == FALSE) {
        return Failed(kLogWarning, L"getVolumeInfo for %s %s GetDiskFreeSpaceEx failed error=0x%x %d",
                      candidate, win::LastFailure());
    }
    candidate.volume.m_FileSystemUsedSpace = UsedOf(total.QuadPart, total_free.QuadPart);
    return true;
}

void ReadBlockSize(const Candidate& candidate) {
    DWORD sectors_per_cluster = 0;
    DWORD bytes_per_sector = 0;
    DWORD free_clusters = 0;
    DWORD total_clusters = 0;
    if (CallBound(Kernel32DLL::Get().GetDiskFreeSpaceW, FALSE, candidate.name.c_str(), &sectors_per_cluster,
                  &bytes_per_sector, &free_clusters, &total_clusters) != FALSE) {
        candidate.volume.BlockSize = sectors_per_cluster * bytes_per_sector;
    }
}

void ReadLength(const Candidate& candidate, const UniqueFile& file, std::uint64_t partition_length) {
    GET_LENGTH_INFORMATION information{};
    DWORD returned = 0;
    DWORD error = win::SendControl(file, IOCTL_DISK_GET_LENGTH_INFO, nullptr, 0, &information,
                                   sizeof(information), returned);
    if (error == ERROR_SUCCESS && (returned != sizeof(information) || information.Length.QuadPart < 0)) {
        error = ERROR_INVALID_DATA;
    }
    candidate.volume.m_Size = static_cast<std::uint64_t>(information.Length.QuadPart);
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
    std::vector<wchar_t> paths;
    DWORD length = 0;
    const auto ask = [&](std::vector<wchar_t>& answer, std::size_t& needed) {
        const DWORD code = win::ErrorUnless(CallBound(Kernel32DLL::Get().GetVolumePathNamesForVolumeNameW,
                                                      FALSE, volume.c_str(), answer.data(),
                                                      static_cast<DWORD>(answer.size()), &length));
        needed = length;
        return code;
    };
    const DWORD error = win::GrowAndRetry(paths, kNameCharacters, static_cast<DWORD>(ERROR_MORE_DATA), ask);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogWarning,
                          L"getVolumeInfo for %s GetVolumePathNamesForVolumeName failed error=0x%x %d",
                          volume.c_str(), error, error);
        return {};
    }
    return EnumDisk().GetDriveLetter(volume.c_str(), paths.data(),
                                     std::min<std::size_t>(length, paths.size()));
}

bool getVolumeInfo(const Candidate& candidate) {
    ::Volume& volume = candidate.volume;
    volume.Name = candidate.name;
    volume.m_GUID = candidate.name;
    volume.VolumeLetter = VolumeLetterOf(candidate.name);
    if (!getDeviceName(candidate.name, volume.DeviceName) || !ReadVolumeInformation(candidate)) {
        return false;
    }
    // A volume without a letter is opened by its own name, which is the device without its trailing
    // backslash.
    const std::wstring device = candidate.drive_name.empty()
                                    ? candidate.name.substr(0, candidate.name.size() - 1)
                                    : L"\\\\.\\" + candidate.drive_name;
    const UniqueFile file = OpenDevice(device, GENERIC_READ);
    if (!file) {
        return Failed(kLogWarning, L"getVolumeInfo for %s %s CreateFile failed error=0x%x %d", candidate,
                      win::LastFailure());
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
    ReadLength(candidate, file, partition_length);
    return true;
}

std::optional<::Volume> DescribeFixedVolume(const std::wstring& name) {
    const UINT type = CallBound(Kernel32DLL::Get().GetDriveTypeW, UINT{DRIVE_UNKNOWN}, name.c_str());
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
    NameBuffer name{};
    const UniqueVolumeSearch search(CallBound(Kernel32DLL::Get().FindFirstVolumeW,
                                              HANDLE{INVALID_HANDLE_VALUE}, name.data(),
                                              static_cast<DWORD>(name.size())));
    if (!search) {
        const DWORD error = win::LastFailure();
        GetLogger().Write(kLogError, L"getFixedVolumes: FindFirstVolume failed error=0x%x %d", error, error);
        return false;
    }
    DWORD error = ERROR_SUCCESS;
    for (std::size_t i = 0; i < kMostListed && error == ERROR_SUCCESS; ++i) {
        std::optional<::Volume> volume = DescribeFixedVolume(TextOf(name));
        if (volume) {
            volumes.push_back(std::move(*volume));
        }
        name.fill(L'\0');
        error = win::ErrorUnless(CallBound(Kernel32DLL::Get().FindNextVolumeW, FALSE, search.get(),
                                           name.data(), static_cast<DWORD>(name.size())));
    }
    error = error == ERROR_SUCCESS ? static_cast<DWORD>(ERROR_INVALID_DATA) : error;  // it never ended
    if (error != ERROR_NO_MORE_FILES) {
        // Logged, but no failure: compatibility C135
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

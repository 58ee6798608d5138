#include "common/volume/volume.h"

#include "common/logger/trace.h"
#include "common/platform/case_folding.h"

#include <algorithm>
#include <cstddef>

namespace bmr_common {

const std::wstring kGettingDriveType = L"Getting Drive Type";
const std::wstring kGettingDeviceName = L"Getting Device Name";
const std::wstring kGettingVolumeInformation = L"Getting volume information";
const std::wstring kGettingMountPoints = L"Getting mount points";
const std::wstring kOpeningVolume = L"Opening volume";
const std::wstring kGettingDiskExtents = L"Getting disk extents";
const std::wstring kGettingVolumePartitionSize = L"Getting volume partition size";
const std::wstring kGettingVolumeFreeSpace = L"Getting volume free space";
const std::wstring kGettingVolumeFreeSpaceEx = L"Getting volume free space ex";

namespace {

// Records the result of one query.
void Record(OperationStatus& status, const std::wstring& operation, bool succeeded, const wchar_t* failure) {
    if (succeeded) {
        status.SetSuccess(operation);
    } else {
        status.SetError(operation, failure);
    }
}

// What the first query of the extents has room for. Windows reports a buffer that is too small by an error on
// which the buffer does not grow.
constexpr std::size_t kFirstExtents = 1000;

bool IsDriveName(const std::wstring& dos_name) {
    return dos_name.size() >= 2 && dos_name[1] == L':';
}

}  // namespace

Volume::Volume(std::wstring volume_id, std::wstring device_name)
    : status_{kGettingDriveType,           kGettingDeviceName,      kGettingVolumeInformation,
              kGettingMountPoints,         kOpeningVolume,          kGettingDiskExtents,
              kGettingVolumePartitionSize, kGettingVolumeFreeSpace, kGettingVolumeFreeSpaceEx},
      volume_id_(std::move(volume_id)),
      volume_guid_(volume_id_.empty() ? std::wstring() : GetNormalizedVolumeGUID(volume_id_)),
      device_name_(std::move(device_name)) {}

bool Volume::Initialize(const std::wstring& system_volume_device, const std::wstring& boot_volume_device,
                        const DeviceManager& disks) {
    return Traced(L"bmr_common::Volume::Initialize", [&] {
        InitializeDriveType();
        InitializeDeviceName();
        InitializeMountPoints();
        // All types except removable are queried completely: compatibility C148
        if (drive_type_ != DRIVE_REMOVABLE) {
            InitializeVolumeInformation();
            InitializeFreeSpace();
            InitializeFreeSpaceEx();
            QueryOpenVolume();
        }
        if (!system_volume_device.empty()) {
            is_system_volume_ = IsDevice(system_volume_device);
        }
        is_on_active_partition(disks);
        if (!boot_volume_device.empty()) {
            is_boot_volume_ = IsDevice(boot_volume_device);
        }
        can_backup(disks);
        is_dynamic(disks);
        return status_.ErrorCount() == 0;
    });
}

void Volume::QueryOpenVolume() {
    const UniqueFile volume = OpenVolume();
    if (!status_.IsSucceeded(kOpeningVolume)) {
        return;
    }
    try {
        InitializeVolumePartitionSize(volume);
        InitializeDiskExtents(volume);
    } catch (...) {
        GetLogger().Write(kLogError, L"Exception in %s line %d", L"bmr_common::Volume::Initialize", __LINE__);
        // Marks the queries that the exception skipped as failed: a volume with unknown extents must not pass
        // as one without extents.
        FailIfNotAttempted(kGettingVolumePartitionSize, L"Failed to get volume partition size");
        FailIfNotAttempted(kGettingDiskExtents, L"Failed to GetVolumeDiskExtents");
    }
}

void Volume::FailIfNotAttempted(const std::wstring& operation, const wchar_t* failure) {
    if (status_.FindOperation(operation).state == OperationStatus::kInitial) {
        status_.SetError(operation, failure);
    }
}

// The root path for queries on the volume, or an empty text. An empty path must not be queried: the system
// would answer for the current drive.
const std::wstring& Volume::QueryPath() {
    if (!volume_id_.empty()) {
        return volume_id_;
    }
    device_path_ = GetWin32APICompatibleName(WithoutTrailingBackslashes(device_name_));
    if (!device_path_.empty()) {
        device_path_ += L'\\';
    }
    return device_path_;
}

void Volume::InitializeDriveType() {
    const std::wstring& path = QueryPath();
    DWORD error = 0;
    UINT type = DRIVE_UNKNOWN;
    const bool known = !path.empty() && win::WinAPIWrapper::GetDriveTypeW(path, type, error);
    drive_type_ = type;
    Record(status_, kGettingDriveType, known, L"Failed to get drive type");
}

bool Volume::FindDeviceName() {
    if (!device_name_.empty()) {
        return true;
    }
    if (volume_id_.empty()) {
        return false;
    }
    std::vector<std::wstring> targets;
    DWORD error = 0;
    const std::wstring dos_name = L"Volume{" + GetGuidFromVolumeGUID(volume_id_) + L"}";
    if (!win::WinAPIWrapper::QueryDosDeviceW(dos_name, targets, error) || targets.empty()) {
        return false;
    }
    device_name_ = targets.front();
    return true;
}

void Volume::InitializeDeviceName() {
    if (!FindDeviceName()) {
        status_.SetError(kGettingDeviceName, L"Failed to get device name");
        return;
    }
    Record(status_, kGettingDeviceName, ConvertToNormalizedDeviceId(device_name_),
           L"Failed to standardize device name");
}

void Volume::InitializeMountPoints() {
    DWORD error = 0;
    const bool found = volume_guid_.empty() ? FindMountPointsByDevice()
                                            : win::WinAPIWrapper::GetVolumePathNamesForVolumeNameW(
                                                  volume_guid_, mount_points_, error);
    Record(status_, kGettingMountPoints, found, L"Failed to get mount points");
}

// Finds the mount points of a volume without a GUID; these can only be drive letters.
bool Volume::FindMountPointsByDevice() {
    DWORD error = 0;
    std::vector<std::wstring> names;
    std::vector<std::wstring> found;
    if (!win::WinAPIWrapper::QueryDosDeviceW(L"", names, error)) {
        return false;
    }
    for (const std::wstring& name : names) {
        if (!IsDriveName(name)) {
            continue;
        }
        std::vector<std::wstring> targets;
        if (!win::WinAPIWrapper::QueryDosDeviceW(name, targets, error)) {
            return false;
        }
        if (!targets.empty() && EqualFolded(targets.front(), device_name_)) {
            found.push_back(name + L'\\');
        }
    }
    mount_points_ = std::move(found);
    return true;
}

void Volume::InitializeVolumeInformation() {
    const std::wstring& path = QueryPath();
    DWORD error = 0;
    Record(status_, kGettingVolumeInformation,
           !path.empty() && win::WinAPIWrapper::GetVolumeInformationW(path, information_, error),
           L"Failed to get volume information");
}

void Volume::InitializeFreeSpace() {
    const std::wstring& path = QueryPath();
    DWORD error = 0;
    Record(status_, kGettingVolumeFreeSpace,
           !path.empty() && win::WinAPIWrapper::GetDiskFreeSpaceW(path, free_space_, error),
           L"Failed to get disk free space");
}

void Volume::InitializeFreeSpaceEx() {
    const std::wstring& path = QueryPath();
    DWORD error = 0;
    Record(status_, kGettingVolumeFreeSpaceEx,
           !path.empty() && win::WinAPIWrapper::GetDiskFreeSpaceExW(path, free_space_ex_, error),
           L"Failed to get disk free space ex");
}

UniqueFile Volume::OpenVolume() {
    const std::wstring path = GetWin32APICompatibleName(WithoutTrailingBackslashes(device_name_));
    UniqueFile volume;
    DWORD error = 0;
    const bool opened =
        !path.empty() &&
        win::WinAPIWrapper::CreateFileW(
            path, {.access = GENERIC_READ, .flags = FILE_FLAG_NO_BUFFERING | FILE_FLAG_BACKUP_SEMANTICS},
            volume, error);
    Record(status_, kOpeningVolume, opened, L"Failed to open volume");
    return volume;
}

void Volume::InitializeVolumePartitionSize(const UniqueFile& volume) {
    std::int64_t length = 0;
    DWORD error = 0;
    const bool known = win::WinAPIWrapper::GetDiskLengthInformation(volume, device_name_, length, error);
    volume_partition_size_ = static_cast<std::uint64_t>(length);
    Record(status_, kGettingVolumePartitionSize, known, L"Failed to get volume partition size");
}

void Volume::InitializeDiskExtents(const UniqueFile& volume) {
    win::ByteBuffer buffer(offsetof(VOLUME_DISK_EXTENTS, Extents) + kFirstExtents * sizeof(DISK_EXTENT));
    DWORD error = 0;
    // The buffer grows only on error 122: compatibility C140
    const bool known = win::WinAPIWrapper::GetVolumeDiskExtents(volume, device_name_, buffer, error);
    if (known) {
        std::vector<VolumeExtent> extents;
        for (const DISK_EXTENT& extent : win::ExtentsIn(buffer)) {
            extents.push_back(
                {extent.DiskNumber, extent.StartingOffset.QuadPart, extent.ExtentLength.QuadPart});
        }
        extents_ = std::move(extents);
    }
    Record(status_, kGettingDiskExtents, known, L"Failed to GetVolumeDiskExtents");
}

}  // namespace bmr_common

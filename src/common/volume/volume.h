#pragma once

#include "common/disk/device_manager.h"
#include "common/disk/operation_status.h"
#include "common/platform/win_api_wrapper.h"
#include "common/xml/ms_xml.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bmr_common {

extern const std::wstring kGettingDriveType;
extern const std::wstring kGettingDeviceName;
extern const std::wstring kGettingVolumeInformation;
extern const std::wstring kGettingMountPoints;
extern const std::wstring kOpeningVolume;
extern const std::wstring kGettingDiskExtents;
extern const std::wstring kGettingVolumePartitionSize;
extern const std::wstring kGettingVolumeFreeSpace;
extern const std::wstring kGettingVolumeFreeSpaceEx;

// Returns a view into `path`.
inline std::wstring_view WithoutTrailingBackslashes(std::wstring_view path) {
    return path.substr(0, path.find_last_not_of(L'\\') + 1);
}

// The start of a volume GUID path.
inline constexpr wchar_t kVolumeGuidPrefix[] = L"\\\\?\\Volume{";

// A range of bytes on one disk that a volume occupies.
struct VolumeExtent {
    std::uint32_t disk_number = 0;
    std::int64_t starting_offset = 0;  // bytes
    std::int64_t length = 0;           // bytes
};

// One volume of the running system. Initialize fills it once through a series of named queries; a failed
// query is recorded and does not stop the others. Sizes are in bytes.
class Volume {
public:
    // `volume_id` is the volume GUID path as the system lists it, or empty for a device volume without one.
    // `device_name` is the NT device name, if it is already known.
    explicit Volume(std::wstring volume_id, std::wstring device_name = {});
    virtual ~Volume() = default;
    Volume(const Volume&) = delete;
    Volume& operator=(const Volume&) = delete;

    // Runs the queries. The device names identify the system volume and the boot volume (empty: unknown).
    // Returns true if no query failed.
    virtual bool Initialize(const std::wstring& system_volume_device, const std::wstring& boot_volume_device,
                            const DeviceManager& disks);

    // Each call computes and stores the result again. can_backup also stores its reasons.
    virtual bool can_backup(const DeviceManager& disks);
    virtual bool is_dynamic(const DeviceManager& disks);
    virtual bool is_on_active_partition(const DeviceManager& disks);

    virtual bool IsFailed(const std::wstring& operation) const { return status_.IsFailed(operation); }
    virtual bool IsSucceeded(const std::wstring& operation) const { return status_.IsSucceeded(operation); }
    virtual std::uint64_t ErrorCount() const { return status_.ErrorCount(); }

    virtual void DumpInfo() const;
    // Appends the volume's elements to `parent`; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;

    const std::wstring& volume_id() const { return volume_id_; }
    const std::wstring& volume_guid() const { return volume_guid_; }
    const std::wstring& device_name() const { return device_name_; }
    std::uint32_t drive_type() const { return drive_type_; }
    const std::vector<std::wstring>& mount_points() const { return mount_points_; }
    const win::VolumeInformation& information() const { return information_; }
    std::uint64_t volume_partition_size() const { return volume_partition_size_; }
    const win::DiskFreeSpace& free_space() const { return free_space_; }
    const win::DiskFreeSpaceEx& free_space_ex() const { return free_space_ex_; }
    std::uint32_t volume_block_size() const;
    const std::vector<VolumeExtent>& extents() const { return extents_; }
    bool is_system_volume() const { return is_system_volume_; }
    bool is_boot_volume() const { return is_boot_volume_; }
    // The results stored by Initialize or by the last call of the functions above.
    bool found_on_active_partition() const { return is_on_active_partition_; }
    bool found_dynamic() const { return is_dynamic_; }
    bool found_fit_for_backup() const { return can_backup_; }
    const std::vector<std::wstring>& backup_failure_reasons() const { return reasons_; }

    // The space used by the backup product's own data on this volume, if the owner of this object has set it.
    const std::optional<std::uint64_t>& vorn_used_spaces() const { return vorn_used_spaces_; }
    void set_vorn_used_spaces(std::uint64_t bytes) { vorn_used_spaces_ = bytes; }

    // Name conversions. A function that converts in place leaves its argument unchanged if it returns false.

    // Converts "\Device\Name" to a path that can be opened. For any other form, logs one line and returns an
    // empty text.
    static std::wstring GetWin32APICompatibleName(std::wstring_view device_name);
    // Removes everything before "\Device\" and the trailing backslashes.
    static bool ConvertToNormalizedDeviceId(std::wstring& device_name);
    // The same on a copy. A failure is logged as a failed assertion and returns the name unchanged.
    static std::wstring GetNormalizedDeviceId(const std::wstring& device_name);
    // Extracts the GUID from a volume GUID path with or without its trailing backslash. Returns any other
    // text unchanged.
    static std::wstring GetGuidFromVolumeGUID(const std::wstring& volume_guid);
    // Converts any of these forms to "\\?\Volume{GUID}\".
    static bool ConvertToNormalizedVolumeGUID(std::wstring& volume_guid);
    // The same on a copy. A failure is logged as a failed assertion and returns the text unchanged.
    static std::wstring GetNormalizedVolumeGUID(const std::wstring& volume_guid);

protected:
    virtual void InitializeDriveType();
    virtual void InitializeDeviceName();
    virtual void InitializeMountPoints();
    virtual void InitializeVolumeInformation();
    virtual void InitializeFreeSpace();
    virtual void InitializeFreeSpaceEx();
    virtual UniqueFile OpenVolume();
    virtual void InitializeVolumePartitionSize(const UniqueFile& volume);
    virtual void InitializeDiskExtents(const UniqueFile& volume);

private:
    const std::wstring& QueryPath();  // valid until the next call
    bool FindDeviceName();
    bool FindMountPointsByDevice();
    void QueryOpenVolume();
    void FailIfNotAttempted(const std::wstring& operation, const wchar_t* failure);
    // Ignores case, unlike the flat tables: compatibility C133
    bool IsDevice(const std::wstring& device_name) const;
    bool MissesQuery() const;

    OperationStatus status_;
    std::wstring volume_id_;
    std::wstring volume_guid_;
    std::wstring device_name_;
    std::wstring device_path_;  // the path that QueryPath returns for a volume without an id
    std::uint32_t drive_type_ = DRIVE_UNKNOWN;
    std::vector<std::wstring> mount_points_;
    win::VolumeInformation information_;
    std::uint64_t volume_partition_size_ = 0;
    win::DiskFreeSpace free_space_;
    win::DiskFreeSpaceEx free_space_ex_;
    std::optional<std::uint64_t> vorn_used_spaces_;
    std::vector<VolumeExtent> extents_;
    bool is_system_volume_ = false;
    bool is_boot_volume_ = false;
    bool is_on_active_partition_ = false;
    bool is_dynamic_ = false;
    bool can_backup_ = false;
    std::vector<std::wstring> reasons_;
};

}  // namespace bmr_common

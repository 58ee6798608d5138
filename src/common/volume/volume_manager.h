#pragma once

#include "common/disk/operation_status.h"
#include "common/platform/case_folding.h"
#include "common/platform/nt_api_wrapper.h"
#include "common/volume/volume.h"

#include <map>
#include <string_view>

namespace bmr_common {

extern const std::wstring kFindVolume;

using VolumePtr = boost::shared_ptr<Volume>;

// All volumes of the running system: those that both the object directories and the mount manager list, and
// the device volumes without a GUID. Offsets are in bytes.
class VolumeManager {
public:
    VolumeManager();
    virtual ~VolumeManager() = default;
    VolumeManager(const VolumeManager&) = delete;
    VolumeManager& operator=(const VolumeManager&) = delete;

    // Finds and initialises all volumes. Call only once. If the volumes cannot be enumerated, logs it, leaves
    // the list empty and returns false. Failures of a single volume are recorded in that volume. Never
    // throws.
    virtual bool InitializeWithCurrentVolumes(const DeviceManager& disks,
                                              const std::wstring& system_volume_device,
                                              const std::wstring& boot_volume_device);

    // The volume with that GUID (bare, or a volume GUID path) or NT device name. Returns an empty pointer,
    // after logging one line at level 5, if there is none.
    VolumePtr GetVolume(const std::wstring& guid_or_device) const;
    // The first volume with an extent that starts at `offset` of that disk. Returns an empty pointer, after
    // logging one line at level 5, if there is none.
    VolumePtr GetVolume(std::uint32_t disk_number, std::int64_t offset) const;

    virtual void DumpInfo() const;
    // Appends the element "VolumeInfo" to `parent`; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;

    virtual bool IsFailed(const std::wstring& operation) const { return status_.IsFailed(operation); }
    virtual bool IsSucceeded(const std::wstring& operation) const { return status_.IsSucceeded(operation); }
    virtual std::uint64_t ErrorCount() const { return status_.ErrorCount(); }

    // Sorted by the text of their device names: compatibility C86
    const std::vector<VolumePtr>& volumes() const { return volumes_; }

private:
    using DeviceNamesMap = std::map<std::wstring, std::wstring>;  // NT device name to volume GUID path

    // On failure, each step returns false and sets `error` to the reason.
    static bool GetObjectNamesPairList(const UniqueDirectory& directory, const std::wstring& filter,
                                       std::vector<win::DirectoryEntry>& entries, std::wstring& error);
    static bool GetDeviceNamesList(const std::wstring& directory_path, const std::wstring& prefix,
                                   std::vector<std::wstring>& names, std::wstring& error);
    static bool GetVolumeGUIDsFromFindFirstVolume(std::vector<std::wstring>& volumes, std::wstring& error);
    static bool GetDeviceNamesMap(DeviceNamesMap& map, std::wstring& error);
    static bool AddLinkedVolumes(const std::vector<std::wstring>& links, DeviceNamesMap& map,
                                 std::wstring& error);

    void CreateVolumes(DeviceNamesMap map, const DeviceManager& disks,
                       const std::wstring& system_volume_device, const std::wstring& boot_volume_device);

    OperationStatus status_;
    std::vector<VolumePtr> volumes_;
    // By volume GUID path and by device name. The keys point into the volumes.
    std::map<std::wstring_view, VolumePtr, LessFolded> by_name_;
};

}  // namespace bmr_common

// What a volume derives from its queries and its disks.

#include "common/logger/trace.h"
#include "common/text/decimal_text.h"
#include "common/volume/volume.h"

#include <algorithm>
#include <array>

namespace bmr_common {

std::uint32_t Volume::volume_block_size() const {
    return free_space_.sectors_per_cluster * free_space_.bytes_per_sector;
}

// Whether a query that is required for a backup failed. The free-space queries are not required:
// compatibility C35
bool Volume::MissesQuery() const {
    const std::array needed = {
        &kGettingDriveType,   &kGettingDeviceName,  &kGettingVolumeInformation,  &kOpeningVolume,
        &kGettingMountPoints, &kGettingDiskExtents, &kGettingVolumePartitionSize};
    return std::any_of(needed.begin(), needed.end(),
                       [&](const std::wstring* operation) { return status_.IsFailed(*operation); });
}

bool Volume::can_backup(const DeviceManager& disks) {
    return Traced(L"bmr_common::Volume::can_backup", [&] {
        can_backup_ = false;
        reasons_.clear();
        // The wording, and type 0 after a failed query, are kept on purpose: compatibility C29, C34
        if (drive_type_ != DRIVE_FIXED) {
            reasons_.push_back(L"This not a fixed disk, type is " + DecimalText(drive_type_));
            return false;
        }
        if (MissesQuery()) {
            status_.GetErrors(reasons_);
            return false;
        }
        // A volume without extents passes: compatibility C145
        for (const VolumeExtent& extent : extents_) {
            const DiskDriveManagerPtr disk = disks.GetDevice(extent.disk_number);
            if (!disk) {
                // The wording is kept on purpose: compatibility C30
                reasons_.push_back(L"Extent is on disk " + DecimalText(extent.disk_number) +
                                   L" but we don't have such disk.");
                return false;
            }
            if (!disk->can_backup(reasons_)) {
                return false;
            }
        }
        can_backup_ = true;
        return true;
    });
}

bool Volume::is_dynamic(const DeviceManager& disks) {
    constexpr const wchar_t* kFunction = L"bmr_common::Volume::is_dynamic";
    // Several extents mean dynamic, independent of the disks: compatibility C146
    is_dynamic_ = extents_.size() > 1;
    if (extents_.empty() && drive_type_ == DRIVE_FIXED) {
        GetLogger().Write(kLogTrace, L"%s %s has no extents.", kFunction, volume_id_.c_str());
    }
    if (extents_.size() == 1) {
        const std::uint32_t disk_number = extents_.front().disk_number;
        const DiskDriveManagerPtr disk = disks.GetDevice(disk_number);
        if (disk) {
            is_dynamic_ = disk->is_dynamic();
        } else {
            GetLogger().Write(kLogWarning, L"%s %s no disk %u.", kFunction, volume_id_.c_str(), disk_number);
        }
    }
    return is_dynamic_;
}

bool Volume::is_on_active_partition(const DeviceManager& disks) {
    constexpr const wchar_t* kFunction = L"bmr_common::Volume::is_on_active_partition";
    is_on_active_partition_ = false;
    if (extents_.empty()) {
        if (drive_type_ == DRIVE_FIXED) {
            GetLogger().Write(kLogTrace, L"%s %s has no extents.", kFunction, volume_id_.c_str());
        }
        return false;
    }
    const VolumeExtent& extent = extents_.front();
    const DiskDriveManagerPtr disk = disks.GetDevice(extent.disk_number);
    if (disk) {
        is_on_active_partition_ = disk->ExtentIsOnBootablePartition(extent.starting_offset, extent.length);
    } else {
        GetLogger().Write(kLogWarning, L"%s Volume %s is on non existing disk %u", kFunction,
                          volume_id_.c_str(), extent.disk_number);
    }
    return is_on_active_partition_;
}

}  // namespace bmr_common

#pragma once

#include "common/disk/disk_drive_manager.h"

namespace bmr_common {

// Creates disk objects.
class DiskDriveManagerFactory {
public:
    DiskDriveManagerFactory() = default;
    virtual ~DiskDriveManagerFactory() = default;
    DiskDriveManagerFactory(const DiskDriveManagerFactory&) = delete;
    DiskDriveManagerFactory& operator=(const DiskDriveManagerFactory&) = delete;

    // Each creates a disk of one kind, not yet initialised.
    virtual DiskDriveManagerPtr CreateUnknown(std::uint32_t disk_index) const;
    virtual DiskDriveManagerPtr CreateMBR(std::uint32_t disk_index) const;
    virtual DiskDriveManagerPtr CreateGPT(std::uint32_t disk_index) const;

    // Creates and initialises the disk with that index; its kind depends on the partition style found. Never
    // returns an empty pointer: for a disk that cannot be opened or read, returns an unknown disk with the
    // failure in its status.
    DiskDriveManagerPtr CreateAndInitialize(std::uint32_t disk_index) const;

private:
    DiskDriveManagerPtr CreateFor(std::uint32_t disk_index, const DiskGeometry& geometry) const;
};

}  // namespace bmr_common

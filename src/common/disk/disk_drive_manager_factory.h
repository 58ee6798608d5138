#pragma once

#include "common/disk/disk_drive_manager.h"

namespace bmr_common {

// Makes disk objects.
class DiskDriveManagerFactory {
public:
    DiskDriveManagerFactory() = default;
    virtual ~DiskDriveManagerFactory() = default;
    DiskDriveManagerFactory(const DiskDriveManagerFactory&) = delete;
    DiskDriveManagerFactory& operator=(const DiskDriveManagerFactory&) = delete;

    // A new disk of one kind, not initialised yet.
    virtual DiskDriveManagerPtr CreateUnknown(std::uint32_t disk_index) const;
    virtual DiskDriveManagerPtr CreateMBR(std::uint32_t disk_index) const;
    virtual DiskDriveManagerPtr CreateGPT(std::uint32_t disk_index) const;

    // The disk of that index, of the kind that it is found to be, initialised. Never empty: a disk that
    // cannot be opened or read is an unknown one with the failure in its status.
    DiskDriveManagerPtr CreateAndInitialize(std::uint32_t disk_index) const;

private:
    DiskDriveManagerPtr CreateFor(std::uint32_t disk_index, const DiskGeometry& geometry) const;
};

}  // namespace bmr_common

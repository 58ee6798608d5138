#pragma once

#include "common/disk/disk_drive_manager.h"
#include "common/disk/partition_manager.h"

namespace bmr_common {

// Base class of disks with a partition table. Forwards most queries to the partition manager.
class PartitionedDiskDriveManager : public DiskDriveManager {
public:
    void Initialize(const UniqueFile& drive, const win::ByteBuffer& geometry) override;
    bool InitializeUsingGeometryOf(const boost::shared_ptr<DiskDriveManager>& source,
                                   const DeviceManager& device_manager) override;
    bool can_backup(std::vector<std::wstring>& reasons) const override;
    bool is_dynamic() const override;
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override;
    const DRIVE_LAYOUT_INFORMATION_EX* GetPartitionLayoutExPtr() const override;
    bool HasPartitionAtOffset(std::int64_t offset) const override;
    std::uint32_t GetPartitionCount() const override;
    bool GetPartitionNumberAtOffset(std::int64_t offset, std::uint32_t& number) const override;

protected:
    using DiskDriveManager::DiskDriveManager;

    // The partition manager; exists from construction on.
    virtual PartitionManager& partition_manager() const = 0;
    // Replaces the partition manager with one for an empty table with the disk's unique id.
    virtual void MakeEmptyTable() = 0;
};

}  // namespace bmr_common

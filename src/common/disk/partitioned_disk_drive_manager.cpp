#include "common/disk/partitioned_disk_drive_manager.h"

#include "common/logger/orvane_logger.h"

namespace bmr_common {

void PartitionedDiskDriveManager::Initialize(const UniqueFile& drive, const win::ByteBuffer& geometry) {
    TakeGeometry(DiskGeometry(geometry));
    // If the layout cannot be read, the partition manager's own status records it.
    partition_manager().Initialize(drive);
}

bool PartitionedDiskDriveManager::InitializeUsingGeometryOf(const boost::shared_ptr<DiskDriveManager>& source,
                                                            const DeviceManager& device_manager) {
    if (!source || !source->IsSucceeded(kGettingDriveGeometry)) {
        GetLogger().Write(kLogError, L"%s no geometry to take for disk %u",
                          L"bmr_common::DiskDriveManager::InitializeUsingGeometryOf", disk_index_);
        return false;
    }
    TakeGeometry(source->geometry().ForFreshTable(GetPartitionStyle()));
    if (!AssignUniqueId(device_manager)) {
        return false;
    }
    MakeEmptyTable();
    return true;
}

bool PartitionedDiskDriveManager::can_backup(std::vector<std::wstring>& reasons) const {
    return DiskDriveManager::can_backup(reasons) && partition_manager().can_backup(reasons);
}

bool PartitionedDiskDriveManager::is_dynamic() const {
    return partition_manager().is_dynamic();
}

bool PartitionedDiskDriveManager::ExtentIsOnBootablePartition(const std::int64_t& offset,
                                                              const std::int64_t& length) const {
    return partition_manager().ExtentIsOnBootablePartition(offset, length);
}

const DRIVE_LAYOUT_INFORMATION_EX* PartitionedDiskDriveManager::GetPartitionLayoutExPtr() const {
    return partition_manager().layout();
}

bool PartitionedDiskDriveManager::HasPartitionAtOffset(std::int64_t offset) const {
    return partition_manager().FindUsedPartition(offset) != nullptr;
}

std::uint32_t PartitionedDiskDriveManager::GetPartitionCount() const {
    return static_cast<std::uint32_t>(partition_manager().partitions().size());
}

bool PartitionedDiskDriveManager::GetPartitionNumberAtOffset(std::int64_t offset,
                                                             std::uint32_t& number) const {
    return partition_manager().GetPartitionNumberAtOffset(offset, number);
}

}  // namespace bmr_common

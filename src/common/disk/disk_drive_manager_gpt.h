#pragma once

#include "common/disk/partition_manager_gpt.h"
#include "common/disk/partitioned_disk_drive_manager.h"

namespace bmr_common {

// A disk with a GUID partition table and a disk GUID. The document does not contain its partitions:
// compatibility C82
class DiskDriveManagerGPT : public PartitionedDiskDriveManager {
public:
    explicit DiskDriveManagerGPT(std::uint32_t disk_index);

    void DumpInfo() const override;
    std::uint32_t GetPartitionStyle() const override { return kStyleGPT; }
    bool SetupDiskStruct(CREATE_DISK& description) const override;
    void SetUniqueIdToRandom() override;
    bool has_same_unique_id(const DiskDriveManager& other) const override;
    bool FillDiskRow(DiskRow& row) const override;

protected:
    PartitionManager& partition_manager() const override { return *partition_manager_; }
    void MakeEmptyTable() override;

private:
    boost::shared_ptr<PartitionManagerGPT> partition_manager_;
};

}  // namespace bmr_common

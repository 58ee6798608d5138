#pragma once

#include "common/disk/partition_manager_mbr.h"
#include "common/disk/partitioned_disk_drive_manager.h"

namespace bmr_common {

// A disk with a master boot record and a signature.
class DiskDriveManagerMBR : public PartitionedDiskDriveManager {
public:
    explicit DiskDriveManagerMBR(std::uint32_t disk_index);

    void DumpInfo() const override;
    void CaptureInfo(CMSXmlNode& parent) const override;
    std::uint32_t GetPartitionStyle() const override { return kStyleMBR; }
    bool SetupDiskStruct(CREATE_DISK& description) const override;
    void SetUniqueIdToRandom() override;
    bool has_same_unique_id(const DiskDriveManager& other) const override;
    bool FillDiskRow(DiskRow& row) const override;

protected:
    PartitionManager& partition_manager() const override { return *partition_manager_; }
    void MakeEmptyTable() override;

private:
    boost::shared_ptr<PartitionManagerMBR> partition_manager_;
};

}  // namespace bmr_common

#include "common/disk/disk_drive_manager_gpt.h"

#include "common/logger/trace.h"
#include "common/platform/guid.h"

#include <boost/make_shared.hpp>

namespace bmr_common {

DiskDriveManagerGPT::DiskDriveManagerGPT(std::uint32_t disk_index)
    : PartitionedDiskDriveManager(disk_index),
      partition_manager_(boost::make_shared<PartitionManagerGPT>(disk_index)) {}

void DiskDriveManagerGPT::MakeEmptyTable() {
    partition_manager_ = boost::make_shared<PartitionManagerGPT>(disk_index_);
    partition_manager_->InitializeEmptyLayout(geometry_.disk_id(), geometry_.disk_size());
}

void DiskDriveManagerGPT::DumpInfo() const {
    Traced(L"bmr_common::DiskDriveManagerGPT::DumpInfo", [&] {
        PartitionedDiskDriveManager::DumpInfo();
        GetLogger().Write(kLogInformation, L"  Partition Style: GPT");
        // The partition manager dumps it again: compatibility C46
        GetLogger().Write(kLogInformation, L"    DiskId: %s", GuidText(geometry_.disk_id()).c_str());
        partition_manager_->DumpInfo();
    });
}

bool DiskDriveManagerGPT::SetupDiskStruct(CREATE_DISK& description) const {
    description.PartitionStyle = PARTITION_STYLE_GPT;
    description.Gpt.DiskId = geometry_.disk_id();
    description.Gpt.MaxPartitionCount = kUsualPartitionCount;
    return true;
}

void DiskDriveManagerGPT::SetUniqueIdToRandom() {
    GUID disk_id{};
    // Stays zero if the system cannot create a GUID: compatibility C153
    CreateGuid(disk_id);
    geometry_.SetDiskId(disk_id);
}

bool DiskDriveManagerGPT::has_same_unique_id(const DiskDriveManager& other) const {
    return other.GetPartitionStyle() == GetPartitionStyle() &&
           IsEqualGUID(other.geometry().disk_id(), geometry_.disk_id());
}

bool DiskDriveManagerGPT::FillDiskRow(DiskRow& row) const {
    row.partition_style = static_cast<std::int32_t>(GetPartitionStyle());
    const bool filled = partition_manager_->GetEnumDiskPartitionVector(row, row.partitions);
    for (PartitionRow& partition : row.partitions) {
        partition.partition_style = row.partition_style;
    }
    return filled;
}

}  // namespace bmr_common

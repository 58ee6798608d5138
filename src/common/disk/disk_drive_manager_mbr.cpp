#include "common/disk/disk_drive_manager_mbr.h"

#include "common/logger/trace.h"

#include <boost/make_shared.hpp>

#include <cstdlib>

namespace bmr_common {

DiskDriveManagerMBR::DiskDriveManagerMBR(std::uint32_t disk_index)
    : PartitionedDiskDriveManager(disk_index),
      partition_manager_(boost::make_shared<PartitionManagerMBR>(disk_index)) {}

void DiskDriveManagerMBR::MakeEmptyTable() {
    // The fresh geometry's checksum is 0 already.
    partition_manager_ = boost::make_shared<PartitionManagerMBR>(disk_index_);
    partition_manager_->InitializeEmptyLayout(geometry_.signature());
}

void DiskDriveManagerMBR::DumpInfo() const {
    Traced(L"bmr_common::DiskDriveManagerMBR::DumpInfo", [&] {
        PartitionedDiskDriveManager::DumpInfo();
        GetLogger().Write(kLogInformation, L"  Partition Style: MBR");
        // The table dumps it again: compatibility C46
        GetLogger().Write(kLogInformation, L"    Signature: 0x%x", geometry_.signature());
        partition_manager_->DumpInfo();
    });
}

void DiskDriveManagerMBR::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::DiskDriveManagerMBR::CaptureInfo", [&] {
        if (CaptureCommonInfo(parent)) {
            // With a second "PartitionStyle": compatibility C81
            partition_manager_->CaptureInfo(parent);
        }
    });
}

bool DiskDriveManagerMBR::SetupDiskStruct(CREATE_DISK& description) const {
    description.PartitionStyle = PARTITION_STYLE_MBR;
    description.Mbr.Signature = geometry_.signature();
    return true;
}

void DiskDriveManagerMBR::SetUniqueIdToRandom() {
    // Two numbers of 15 bits: compatibility C158
    const auto high = static_cast<std::uint32_t>(std::rand()) << 16;
    geometry_.SetSignature(high + static_cast<std::uint32_t>(std::rand()));
}

bool DiskDriveManagerMBR::has_same_unique_id(const DiskDriveManager& other) const {
    return other.GetPartitionStyle() == GetPartitionStyle() &&
           other.geometry().signature() == geometry_.signature();
}

}  // namespace bmr_common

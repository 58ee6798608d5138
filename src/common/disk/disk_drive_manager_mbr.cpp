#include "common/disk/disk_drive_manager_mbr.h"

#include "common/logger/trace.h"
#include "common/platform/storage_queries.h"
#include "common/record/partition_rows.h"

#include <boost/make_shared.hpp>

#include <cstdlib>

namespace bmr_common {

namespace {

PARTITION_INFORMATION ClassicEntry(const PARTITION_INFORMATION_EX& entry) {
    PARTITION_INFORMATION classic{};
    classic.StartingOffset = entry.StartingOffset;
    classic.PartitionLength = entry.PartitionLength;
    classic.HiddenSectors = entry.Mbr.HiddenSectors;
    classic.PartitionNumber = entry.PartitionNumber;
    classic.PartitionType = entry.Mbr.PartitionType;
    classic.BootIndicator = entry.Mbr.BootIndicator;
    classic.RecognizedPartition = entry.Mbr.RecognizedPartition;
    classic.RewritePartition = entry.RewritePartition;
    return classic;
}

}  // namespace

DiskDriveManagerMBR::DiskDriveManagerMBR(std::uint32_t disk_index)
    : PartitionedDiskDriveManager(disk_index),
      partition_manager_(boost::make_shared<PartitionManagerMBR>(disk_index)) {}

void DiskDriveManagerMBR::MakeEmptyTable() {
    // ForFreshTable has already set the checksum in the geometry to 0.
    partition_manager_ = boost::make_shared<PartitionManagerMBR>(disk_index_);
    partition_manager_->InitializeEmptyLayout(geometry_.signature());
}

void DiskDriveManagerMBR::DumpInfo() const {
    Traced(L"bmr_common::DiskDriveManagerMBR::DumpInfo", [&] {
        PartitionedDiskDriveManager::DumpInfo();
        GetLogger().Write(kLogInformation, L"  Partition Style: MBR");
        // The partition manager dumps it again: compatibility C46
        GetLogger().Write(kLogInformation, L"    Signature: 0x%x", geometry_.signature());
        partition_manager_->DumpInfo();
    });
}

void DiskDriveManagerMBR::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::DiskDriveManagerMBR::CaptureInfo", [&] {
        if (CaptureCommonInfo(parent)) {
            // Adds a second "PartitionStyle" element: compatibility C81
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
    // Combines two random numbers of 15 bits each: compatibility C158
    const auto high = static_cast<std::uint32_t>(std::rand()) << 16;
    geometry_.SetSignature(high + static_cast<std::uint32_t>(std::rand()));
}

bool DiskDriveManagerMBR::has_same_unique_id(const DiskDriveManager& other) const {
    return other.GetPartitionStyle() == GetPartitionStyle() &&
           other.geometry().signature() == geometry_.signature();
}

bool DiskDriveManagerMBR::FillDiskRow(DiskRow& row) const {
    row.partition_style = static_cast<std::int32_t>(GetPartitionStyle());
    std::vector<PARTITION_INFORMATION> entries;
    for (const PARTITION_INFORMATION_EX& entry : win::PartitionsIn(*GetPartitionLayoutExPtr())) {
        entries.push_back(ClassicEntry(entry));
    }
    BuildPartitionRows(entries, static_cast<std::int64_t>(row.size), row.partitions);
    return true;
}

}  // namespace bmr_common

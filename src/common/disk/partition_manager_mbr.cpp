#include "common/disk/partition_manager_mbr.h"

#include "common/disk/partition_mbr.h"
#include "common/logger/trace.h"
#include "common/record/partition_rows.h"

#include <boost/make_shared.hpp>

namespace bmr_common {

PartitionPtr PartitionManagerMBR::CreatePartition() const {
    return boost::make_shared<PartitionMBR>();
}

void PartitionManagerMBR::Initialize(const UniqueFile& drive) {
    InitializeExpecting(PARTITION_STYLE_MBR, L"Partitions are not MBR but is ",
                        L"bmr_common::PartitionManagerMBR::Initialize", drive);
}

void PartitionManagerMBR::InitializeEmptyLayout(std::uint32_t signature) {
    status_.SetSuccess(kGettingDriveLayoutEx);
    status_.SetSuccess(kVerifyingPartitionType);
    partitions_.clear();
    layout_ = MakeLayout(kPrimarySlots);
    mutable_layout()->PartitionStyle = PARTITION_STYLE_MBR;
    mutable_layout()->PartitionCount = kPrimarySlots;
    mutable_layout()->Mbr.Signature = signature;
    AddPartitionsOfLayout();
}

bool PartitionManagerMBR::can_backup(std::vector<std::wstring>& reasons) const {
    if (!PartitionManager::can_backup(reasons)) {
        return false;
    }
    for (const PartitionPtr& partition : partitions_) {
        if (!partition->is_unused() && !partition->can_backup(reasons)) {
            return false;
        }
    }
    return AnyPartitionInUse(reasons);
}

void PartitionManagerMBR::DumpInfo() const {
    Traced(L"bmr_common::PartitionManagerMBR::DumpInfo", [&] {
        PartitionManager::DumpInfo();
        if (layout() == nullptr) {
            return;
        }
        GetLogger().Write(kLogInformation, L"  Signature: 0x%x", layout()->Mbr.Signature);
        for (const PartitionPtr& partition : partitions_) {
            partition->DumpInfo();
        }
    });
}

void PartitionManagerMBR::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::PartitionManagerMBR::CaptureInfo", [&] {
        PartitionManager::CaptureInfo(parent);
        std::size_t position = 0;
        for (const PartitionPtr& partition : partitions_) {
            CMSXmlNode node = parent.AddChild(("Partition" + std::to_string(++position)).c_str());
            partition->CaptureInfo(node);
        }
    });
}

bool PartitionManagerMBR::ExtentIsOnBootablePartition(const std::int64_t& offset,
                                                      const std::int64_t& length) const {
    return IsOnBootablePartition(L"bmr_common::PartitionManagerMBR::ExtentIsOnBootablePartition", offset,
                                 length);
}

}  // namespace bmr_common

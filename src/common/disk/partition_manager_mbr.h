#pragma once

#include "common/disk/partition_manager.h"

namespace bmr_common {

// The partition table of an MBR disk.
class PartitionManagerMBR : public PartitionManager {
public:
    using PartitionManager::PartitionManager;

    bool can_backup(std::vector<std::wstring>& reasons) const override;
    void Initialize(const UniqueFile& drive) override;
    void DumpInfo() const override;
    // Also appends one element for each entry, including unused ones.
    void CaptureInfo(CMSXmlNode& parent) const override;
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override;
    PartitionPtr CreatePartition() const override;

    // Creates an empty table with four unused entries. Call only on a new object.
    void InitializeEmptyLayout(std::uint32_t signature);
};

}  // namespace bmr_common

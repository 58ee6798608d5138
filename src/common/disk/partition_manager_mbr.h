#pragma once

#include "common/disk/partition_manager.h"

namespace bmr_common {

// The table of a master-boot-record disk.
class PartitionManagerMBR : public PartitionManager {
public:
    using PartitionManager::PartitionManager;

    bool can_backup(std::vector<std::wstring>& reasons) const override;
    void Initialize(const UniqueFile& drive) override;
    void DumpInfo() const override;
    // Also one element per entry, unused ones included.
    void CaptureInfo(CMSXmlNode& parent) const override;
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override;
    PartitionPtr CreatePartition() const override;

    // Makes this the table of a disk that is to be given a fresh one: four unused entries. On a new manager
    // only.
    void InitializeEmptyLayout(std::uint32_t signature);
};

}  // namespace bmr_common

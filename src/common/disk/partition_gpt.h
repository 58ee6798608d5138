#pragma once

#include "common/disk/partition.h"

namespace bmr_common {

// An entry of a GUID partition table (GPT).
class PartitionGPT : public Partition {
public:
    // Only basic data partitions and LDM data partitions can be backed up.
    bool can_backup(std::vector<std::wstring>& reasons) const override;
    void DumpInfo() const override;
    bool is_dynamic() const override;
    bool is_unused() const override;
    bool contains_extent(const std::int64_t& offset, const std::int64_t& length) const override;
    // True for the EFI system partition.
    bool is_bootable() const override;

    // The display name of the type.
    void GetPartitionTypeName(std::wstring& name) const;
};

}  // namespace bmr_common

#pragma once

#include "common/disk/partition.h"

namespace bmr_common {

// An entry of a master boot record, or of one of its extended boot records.
class PartitionMBR : public Partition {
public:
    // Every entry in use can be backed up.
    bool can_backup(std::vector<std::wstring>& reasons) const override;
    void DumpInfo() const override;
    void CaptureInfo(CMSXmlNode& parent) const override;
    bool is_dynamic() const override;
    bool is_unused() const override;
    bool contains_extent(const std::int64_t& offset, const std::int64_t& length) const override;
    // True for the active partition, whose boot indicator is exactly 1.
    bool is_bootable() const override;

private:
    // The unchanged bytes of the flags: compatibility C84
    std::uint8_t boot_indicator() const;
    std::uint8_t recognized() const;
};

}  // namespace bmr_common

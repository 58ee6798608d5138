#pragma once

#include "documents/reader/layout.h"

namespace documents {

// The disks and volumes of format 3, each with its own properties.
class ModelLayout final : public Layout {
public:
    using Layout::Layout;

    std::span<const ElementRule> Rules() const override;
    void Finish() override {}

private:
    void TakePartition(Row& row);
    void TakeDisk(Row& row);
    void TakeReadableDisk(Row& row, Disk& disk);
    static void TakeStyle(Row& row, Disk& disk);
    void TakeDeviceInfo(Row& row);
    void TakeExtent(Row& row);
    void TakeVolume(Row& row);
    void TakeVolumeInfo(Row& row) { static_cast<void>(row); }

    std::vector<Partition> partitions_;  // of the disk that is being read
    std::optional<Range> extended_;
    std::optional<ExtendedEntry> extended_entry_;
    std::size_t primaries_before_extended_ = 0;
    std::size_t entries_ = 0;
    std::vector<Extent> extents_;  // of the volume that is being read
};

}  // namespace documents

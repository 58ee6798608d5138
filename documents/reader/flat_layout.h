#pragma once

#include "documents/reader/layout.h"

namespace documents {

// The flat tables of formats 1 and 2.
class FlatLayout final : public Layout {
public:
    using Layout::Layout;

    std::span<const ElementRule> Rules() const override;
    void Finish() override;

private:
    struct Rows {
        std::vector<Partition> partitions;
        std::vector<Gap> gaps;
        std::optional<Range> extended;
        std::size_t primaries_before_extended = 0;
    };

    void TakeRow(Row& row);
    void TakePartition(Row& row, const Range& place, PartitionKind kind);
    void TakeRowInExtended(const Range& place);
    void TakeDisk(Row& row);
    void TakeDiskDrives(Row& row);
    void TakeExtent(Row& row);
    void TakeVolume(Row& row);
    void TakeVolumeTable(Row& row);
    void TakeDrive(Row& row);
    void TakeDriveLetterTable(Row& row);
    void TakeBootConfig(Row& row);

    static Extent PlaceOf(Row& row);
    void TakeStyle(Row& row, Disk& disk) const;
    void RequireDisks() const;
    void GiveIdsToDisks();
    void GiveSystemNumbers();
    Disk* DiskOf(std::uint32_t number);

    Rows rows_;                    // of the disk that is being read
    std::vector<Extent> extents_;  // of the volume that is being read
};

}  // namespace documents

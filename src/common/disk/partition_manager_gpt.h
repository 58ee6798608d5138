#pragma once

#include "common/disk/partition_manager.h"
#include "common/record/rows.h"

namespace bmr_common {

// The table of a GUID-partition-table disk. The editing operations work on the copy in memory; they need a
// successful Initialize, and leave the copy as it was when they fail (false, after a level 2 line; an
// alignment of 0 is such a failure). The operations that write to the disk differ: when a write fails, the
// copy keeps all edits, in partitions() and layout() alike, and the disk may not have them. A new manager's
// Initialize reads what it has.
class PartitionManagerGPT : public PartitionManager {
public:
    using PartitionManager::PartitionManager;

    bool can_backup(std::vector<std::wstring>& reasons) const override;
    void Initialize(const UniqueFile& drive) override;
    void DumpInfo() const override;
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override;
    // One alignment unit stays free at the end, for the backup table.
    std::int64_t GetSpaceToEnd(const std::int64_t& offset, const std::int64_t& disk_size,
                               std::uint32_t alignment) const override;

    // Removes the partition in use that starts at `offset`.
    virtual bool DeletePartitionFromMemory(std::int64_t offset);
    // Removes all of them, then writes the table. Removals made before a failure stay made in memory, all of
    // them where only the write failed: compatibility C154, C155
    virtual bool DeletePartitionsAndWrite(const std::vector<std::int64_t>& offsets);
    // Adds a partition at the requested start, rounded up to `alignment`, with the requested size or, where
    // that does not fit, whatever there is down to the minimum. Stores what it used in `used_start` and
    // `used_size`, which a failure for an alignment of 0 leaves alone.
    virtual bool AddPartitionInMemory(const std::int64_t& requested_start, const std::int64_t& requested_size,
                                      const std::int64_t& minimum_size, const std::int64_t& disk_size,
                                      std::uint32_t alignment, const GUID& type, std::int64_t* used_start,
                                      std::int64_t* used_size);
    // Writes the table in memory to the disk, sorted and numbered by start. layout() is the new one from then
    // on, even where the write fails; the disk is then as WritePartitionTableToDisk tells. Without a GPT
    // layout that was read or made, false after a level 2 line and nothing changed.
    virtual bool CommitPartitionTable();
    virtual bool ResizePartitionInMemory(std::int64_t start, std::int64_t new_size, std::int64_t disk_size,
                                         std::uint32_t alignment);
    PartitionPtr CreatePartition() const override;

    // Makes this the table of a disk of `disk_size` bytes that is to be given a fresh one. On a new manager
    // only.
    void InitializeEmptyLayout(const GUID& disk_id, std::int64_t disk_size);

    // The table as rows of the flat record, gaps included, in disk order. Always true.
    bool GetEnumDiskPartitionVector(const DiskRow& disk, std::vector<PartitionRow>& rows) const;
};

}  // namespace bmr_common

#pragma once

#include "common/disk/partition_manager.h"
#include "common/record/rows.h"

namespace bmr_common {

// The number of entries in the array of a fresh table.
inline constexpr DWORD kUsualPartitionCount = 128;

// The partition table of a GPT disk. The editing functions change only the copy in memory. They require a
// successful Initialize. On failure (an alignment of 0, for example) they log at level 2, return false and
// leave the copy unchanged. The functions that write to the disk differ: after a failed write, partitions()
// and layout() keep all edits, but the disk may not contain them. To read the actual table from the disk,
// call Initialize on a new object.
class PartitionManagerGPT : public PartitionManager {
public:
    using PartitionManager::PartitionManager;

    bool can_backup(std::vector<std::wstring>& reasons) const override;
    void Initialize(const UniqueFile& drive) override;
    void DumpInfo() const override;
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override;
    // Keeps one alignment unit free at the end, for the backup table.
    std::int64_t GetSpaceToEnd(const std::int64_t& offset, const std::int64_t& disk_size,
                               std::uint32_t alignment) const override;

    // Removes the partition in use that starts at `offset`.
    virtual bool DeletePartitionFromMemory(std::int64_t offset);
    // Removes the partitions that start at `offsets`, then writes the table. Removals made before a failure
    // stay in memory; if only the write fails, all of them stay: compatibility C154, C155
    virtual bool DeletePartitionsAndWrite(const std::vector<std::int64_t>& offsets);
    // Adds a partition at `requested_start`, rounded up to `alignment`. If the requested size does not fit,
    // uses the largest size available, but at least `minimum_size`. Stores the start and size used in
    // `used_start` and `used_size`, but leaves both unchanged if `alignment` is 0.
    virtual bool AddPartitionInMemory(const std::int64_t& requested_start, const std::int64_t& requested_size,
                                      const std::int64_t& minimum_size, const std::int64_t& disk_size,
                                      std::uint32_t alignment, const GUID& type, std::int64_t* used_start,
                                      std::int64_t* used_size);
    // Writes the table in memory to the disk, sorted and numbered by start offset. layout() returns the new
    // layout from then on, even if the write fails; WritePartitionTableToDisk describes the state of the disk
    // in that case. Without a GPT layout, read or created, logs at level 2, returns false and changes
    // nothing.
    virtual bool CommitPartitionTable();
    virtual bool ResizePartitionInMemory(std::int64_t start, std::int64_t new_size, std::int64_t disk_size,
                                         std::uint32_t alignment);
    PartitionPtr CreatePartition() const override;

    // Creates an empty table for a disk of `disk_size` bytes. Call only on a new object.
    void InitializeEmptyLayout(const GUID& disk_id, std::int64_t disk_size);

    // Converts the table to rows of the flat record, in disk order, with rows for gaps. Always returns true.
    bool GetEnumDiskPartitionVector(const DiskRow& disk, std::vector<PartitionRow>& rows) const;
};

}  // namespace bmr_common

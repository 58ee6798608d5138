#pragma once

#include "common/disk/operation_status.h"
#include "common/disk/partition.h"
#include "common/platform/win_api_wrapper.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {

extern const std::wstring kGettingDriveLayoutEx;
extern const std::wstring kVerifyingPartitionType;

using PartitionPtr = boost::shared_ptr<Partition>;

// The partition table of one physical disk. Offsets, lengths and sizes are in bytes. After a failed
// Initialize the object has no partitions, and can_backup returns the reasons. Only the XML functions throw.
class PartitionManager {
public:
    // `disk_index` is the N of \\.\PhysicalDriveN.
    explicit PartitionManager(std::uint32_t disk_index);
    virtual ~PartitionManager() = default;
    PartitionManager(const PartitionManager&) = delete;
    PartitionManager& operator=(const PartitionManager&) = delete;

    // Whether the partition table allows a backup of the disk. If not, appends the reasons.
    virtual bool can_backup(std::vector<std::wstring>& reasons) const;
    // Reads the table from the open drive. The caller keeps ownership of the drive. Call only once.
    virtual void Initialize(const UniqueFile& drive) = 0;
    virtual void DumpInfo() const;
    // Appends the table's elements to `parent`, or nothing if the layout was not read; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    virtual bool is_dynamic() const;
    // Whether exactly one partition contains the extent and that partition is bootable.
    virtual bool ExtentIsOnBootablePartition(const std::int64_t& offset,
                                             const std::int64_t& length) const = 0;
    // The number of bytes from `offset` to the end of the space that partitions can use. Accepts any
    // alignment, even 0.
    virtual std::int64_t GetSpaceToEnd(const std::int64_t& offset, const std::int64_t& disk_size,
                                       std::uint32_t alignment) const;

    virtual bool IsFailed(const std::wstring& operation) const { return status_.IsFailed(operation); }
    virtual bool IsSucceeded(const std::wstring& operation) const { return status_.IsSucceeded(operation); }
    virtual std::uint64_t ErrorCount() const { return status_.ErrorCount(); }

    bool GetDriveLayoutEx(const UniqueFile& drive);
    // Finds the start of the first partition after `offset`. Returns false if there is none.
    bool GetNextPartitionAfter(std::int64_t offset, std::int64_t& next) const;
    // The size of the largest partition that can start at `offset`, rounded down to a multiple of
    // `alignment`. Returns 0, after logging at level 2, if `offset` is at or beyond the end of the disk or
    // `alignment` is 0.
    std::int64_t GetMaximumPartitionSize(std::int64_t offset, std::int64_t disk_size,
                                         std::uint32_t alignment) const;
    // Whether the start and the end are multiples of `alignment`. If not, or if `alignment` is 0, logs one
    // line at level 2.
    static bool PartitionCorrectlyAligned(std::int64_t start, std::int64_t length, std::uint32_t alignment);
    // Marks every entry of `layout` as to be rewritten and writes `layout` to the disk. On failure, logs at
    // level 2 and returns false; the entries stay marked. The content of the disk then depends on the step
    // that failed: the old table if the disk could not be opened, whatever the driver left if the write
    // failed, or the new table if only a later step failed.
    bool WritePartitionTableToDisk(win::ByteBuffer& layout) const;

    void FindPartitionsContainingExtent(std::int64_t offset, std::int64_t length,
                                        std::vector<PartitionPtr>& found) const;
    bool IsExtentOverlappingAnyPartition(std::int64_t offset, std::int64_t length) const;
    bool GetPartitionNumberAtOffset(std::int64_t offset, std::uint32_t& number) const;
    // The first partition in use that starts at `offset`; an empty pointer if there is none.
    PartitionPtr FindUsedPartition(std::int64_t offset) const;

    // The layout that was read or created; null if it is not valid.
    const DRIVE_LAYOUT_INFORMATION_EX* layout() const;
    // In the order of the layout entries.
    const std::vector<PartitionPtr>& partitions() const { return partitions_; }

protected:
    virtual PartitionPtr CreatePartition() const = 0;

    // Shared by the derived classes. `refusal` starts the error text for a disk of another style; `function`
    // is used in log lines.
    void InitializeExpecting(std::uint32_t style, const std::wstring& refusal, const wchar_t* function,
                             const UniqueFile& drive);
    bool IsOnBootablePartition(const wchar_t* function, std::int64_t offset, std::int64_t length) const;
    // Whether any partition is in use. If not, logs and appends a reason.
    bool AnyPartitionInUse(std::vector<std::wstring>& reasons) const;
    // A copy of the partitions, sorted by start offset.
    std::vector<PartitionPtr> SortedPartitions() const;
    // A zero-filled layout with space for `entries` entries, but at least one.
    static win::ByteBuffer MakeLayout(std::size_t entries);
    DRIVE_LAYOUT_INFORMATION_EX* mutable_layout();
    void AddPartitionsOfLayout();
    // Returns false for an alignment of 0, after logging one line at level 2 that names `function`.
    static bool IsUsableAlignment(const wchar_t* function, std::uint32_t alignment);

    OperationStatus status_;
    const std::uint32_t disk_index_;
    win::ByteBuffer layout_;  // valid only if kGettingDriveLayoutEx succeeded
    std::vector<PartitionPtr> partitions_;
};

// Casts `buffer` to a layout. The buffer must contain the header and all the entries that it counts.
DRIVE_LAYOUT_INFORMATION_EX* LayoutIn(win::ByteBuffer& buffer);

}  // namespace bmr_common

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

// One physical disk's partition table. Offsets, lengths and sizes are in bytes. A failed Initialize leaves a
// manager without partitions whose can_backup gives the reasons; nothing but the XML layer throws.
class PartitionManager {
public:
    // `disk_index` is the N of \\.\PhysicalDriveN.
    explicit PartitionManager(std::uint32_t disk_index);
    virtual ~PartitionManager() = default;
    PartitionManager(const PartitionManager&) = delete;
    PartitionManager& operator=(const PartitionManager&) = delete;

    // Whether the disk's table lets it be backed up; when not, appends the reasons.
    virtual bool can_backup(std::vector<std::wstring>& reasons) const;
    // Reads the table; to be called once, with the open drive, which stays the caller's.
    virtual void Initialize(const UniqueFile& drive) = 0;
    virtual void DumpInfo() const;
    // Appends the table's elements to `parent`, nothing where the layout was not read; throws _com_error.
    virtual void CaptureInfo(CMSXmlNode& parent) const;
    virtual bool is_dynamic() const;
    // Whether exactly one partition contains the extent and it is the one the machine boots from.
    virtual bool ExtentIsOnBootablePartition(const std::int64_t& offset,
                                             const std::int64_t& length) const = 0;
    // The bytes from `offset` to the end of what partitions may use. Reckons with any alignment, 0 included.
    virtual std::int64_t GetSpaceToEnd(const std::int64_t& offset, const std::int64_t& disk_size,
                                       std::uint32_t alignment) const;

    virtual bool IsFailed(const std::wstring& operation) const { return status_.IsFailed(operation); }
    virtual bool IsSucceeded(const std::wstring& operation) const { return status_.IsSucceeded(operation); }
    virtual std::uint64_t ErrorCount() const { return status_.ErrorCount(); }

    bool GetDriveLayoutEx(const UniqueFile& drive);
    // The start of the first partition strictly after `offset`.
    bool GetNextPartitionAfter(std::int64_t offset, std::int64_t& next) const;
    // The largest partition that could start at `offset`, a multiple of `alignment`. 0 after a level 2 line
    // where `offset` does not lie on the disk or `alignment` is 0.
    std::int64_t GetMaximumPartitionSize(std::int64_t offset, std::int64_t disk_size,
                                         std::uint32_t alignment) const;
    // Whether start and end lie on boundaries of `alignment`; when not, or when it is 0, one level 2 line.
    static bool PartitionCorrectlyAligned(std::int64_t start, std::int64_t length, std::uint32_t alignment);
    // Writes `layout` to the disk, every entry marked to be rewritten. On failure false after a level 2 line;
    // the marks stay in `layout`. The disk then holds its old table where it was not opened, what the driver
    // left where the writing failed, and the new table where only a step behind that failed.
    bool WritePartitionTableToDisk(win::ByteBuffer& layout) const;

    void FindPartitionsContainingExtent(std::int64_t offset, std::int64_t length,
                                        std::vector<PartitionPtr>& found) const;
    bool IsExtentOverlappingAnyPartition(std::int64_t offset, std::int64_t length) const;
    bool GetPartitionNumberAtOffset(std::int64_t offset, std::uint32_t& number) const;
    // The first partition in use that starts at `offset`; empty when there is none.
    PartitionPtr FindUsedPartition(std::int64_t offset) const;

    // The layout as read or made; null unless it is valid.
    const DRIVE_LAYOUT_INFORMATION_EX* layout() const;
    // In the order of the layout's entries.
    const std::vector<PartitionPtr>& partitions() const { return partitions_; }

protected:
    virtual PartitionPtr CreatePartition() const = 0;

    // What the kinds' operations share; `refusal` begins the text for another style, `function` goes into
    // the messages.
    void InitializeExpecting(std::uint32_t style, const std::wstring& refusal, const wchar_t* function,
                             const UniqueFile& drive);
    bool IsOnBootablePartition(const wchar_t* function, std::int64_t offset, std::int64_t length) const;
    // Refuses a disk on which every partition is unused.
    bool AnyPartitionInUse(std::vector<std::wstring>& reasons) const;
    // A copy of the partitions in order of their starts.
    std::vector<PartitionPtr> SortedPartitions() const;
    // A zeroed layout with room for `entries`, and at least for one.
    static win::ByteBuffer MakeLayout(std::size_t entries);
    DRIVE_LAYOUT_INFORMATION_EX* mutable_layout();
    void AddPartitionsOfLayout();
    // False after a level 2 line of `function` for the alignment of 0, to which nothing can be rounded.
    static bool IsUsableAlignment(const wchar_t* function, std::uint32_t alignment);

    OperationStatus status_;
    const std::uint32_t disk_index_;
    win::ByteBuffer layout_;  // valid only while the layout operation has succeeded
    std::vector<PartitionPtr> partitions_;
};

// `buffer` seen as a layout; it holds at least the header and the entries that it counts.
DRIVE_LAYOUT_INFORMATION_EX* LayoutIn(win::ByteBuffer& buffer);

}  // namespace bmr_common

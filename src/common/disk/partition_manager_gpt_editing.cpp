// The GPT partition manager: editing the table in memory and writing it to the disk.

#include "common/disk/partition_manager_gpt.h"
#include "common/logger/orvane_logger.h"
#include "common/platform/guid.h"
#include "common/text/byte_range.h"

#include <algorithm>
#include <cwchar>

namespace bmr_common {

namespace {

// Used for every partition type: compatibility C152
constexpr wchar_t kNewPartitionName[] = L"Basic data partition";

std::int64_t RoundUp(std::int64_t value, std::uint32_t alignment) {
    const std::int64_t unit = alignment;
    // Negative for values below 0; subtracting it then already rounds up.
    const std::int64_t past = value % unit;
    const std::int64_t cut = value - past;
    return past > 0 ? EndOf(cut, unit) : cut;
}

PARTITION_INFORMATION_EX NewEntry(std::int64_t start, std::int64_t size, const GUID& type) {
    PARTITION_INFORMATION_EX entry{};
    entry.PartitionStyle = PARTITION_STYLE_GPT;
    entry.StartingOffset.QuadPart = start;
    entry.PartitionLength.QuadPart = size;
    entry.PartitionNumber = 1;
    entry.Gpt.PartitionType = type;
    // Stays zero if the system cannot create a GUID: compatibility C153
    CreateGuid(entry.Gpt.PartitionId);
    std::copy(std::begin(kNewPartitionName), std::end(kNewPartitionName), entry.Gpt.Name);
    return entry;
}

}  // namespace

bool PartitionManagerGPT::AddPartitionInMemory(const std::int64_t& requested_start,
                                               const std::int64_t& requested_size,
                                               const std::int64_t& minimum_size,
                                               const std::int64_t& disk_size, std::uint32_t alignment,
                                               const GUID& type, std::int64_t* used_start,
                                               std::int64_t* used_size) {
    constexpr const wchar_t* kFunction = L"bmr_common::PartitionManagerGPT::AddPartitionInMemory";
    const PartitionPtr partition = CreatePartition();
    if (used_start == nullptr || used_size == nullptr || !IsUsableAlignment(kFunction, alignment)) {
        return false;
    }
    const std::int64_t start = RoundUp(requested_start, alignment);
    const std::int64_t minimum = RoundUp(minimum_size, alignment);
    std::int64_t size = RoundUp(requested_size, alignment);
    *used_start = start;
    // A partition may end exactly at the end of the disk: compatibility C151
    if (IsExtentOverlappingAnyPartition(start, size) || EndOf(start, size) > disk_size) {
        size = GetMaximumPartitionSize(start, disk_size, alignment);
        if (size < minimum) {
            GetLogger().Write(kLogError,
                              L"%s Maximum available size is %I64i but minimum requested was %I64i.",
                              kFunction, size, minimum);
            return false;
        }
    }
    *used_size = size;
    if (!PartitionCorrectlyAligned(start, size, alignment)) {
        return false;
    }
    partition->Initialize(NewEntry(start, size, type));
    partitions_.push_back(partition);
    return true;
}

bool PartitionManagerGPT::DeletePartitionFromMemory(std::int64_t offset) {
    const PartitionPtr partition = FindUsedPartition(offset);
    if (!partition) {
        GetLogger().Write(kLogError, L"%s Can't find partition at starting offset %I64i",
                          L"bmr_common::PartitionManagerGPT::DeletePartitionFromMemory", offset);
        return false;
    }
    partitions_.erase(std::find(partitions_.begin(), partitions_.end(), partition));
    return true;
}

bool PartitionManagerGPT::DeletePartitionsAndWrite(const std::vector<std::int64_t>& offsets) {
    return std::all_of(offsets.begin(), offsets.end(),
                       [&](std::int64_t offset) { return DeletePartitionFromMemory(offset); }) &&
           CommitPartitionTable();
}

bool PartitionManagerGPT::ResizePartitionInMemory(std::int64_t start, std::int64_t new_size,
                                                  std::int64_t disk_size, std::uint32_t alignment) {
    constexpr const wchar_t* kFunction = L"bmr_common::PartitionManagerGPT::ResizePartitionInMemory";
    const PartitionPtr partition = FindUsedPartition(start);
    if (!partition) {
        GetLogger().Write(kLogError, L"%s Can't find partition at starting offset %I64i", kFunction, start);
        return false;
    }
    if (!PartitionCorrectlyAligned(start, new_size, alignment)) {
        return false;
    }
    const std::int64_t maximum = GetMaximumPartitionSize(start, disk_size, alignment);
    if (maximum < new_size) {
        // The first number is the partition's start instead of the requested size: compatibility C21
        GetLogger().Write(kLogError, L"%s New partition size too big %I64i only %I64i bytes available",
                          kFunction, partition->starting_offset(), maximum);
        return false;
    }
    partition->set_length(new_size);
    return true;
}

bool PartitionManagerGPT::CommitPartitionTable() {
    const DRIVE_LAYOUT_INFORMATION_EX* const present = layout();
    if (present == nullptr || status_.IsFailed(kVerifyingPartitionType)) {
        GetLogger().Write(kLogError, L"%s no GPT layout of disk %u to write",
                          L"bmr_common::PartitionManagerGPT::CommitPartitionTable", disk_index_);
        return false;
    }
    win::ByteBuffer buffer = MakeLayout(partitions_.size());
    DRIVE_LAYOUT_INFORMATION_EX& table = *LayoutIn(buffer);
    table.PartitionStyle = PARTITION_STYLE_GPT;
    table.PartitionCount = static_cast<DWORD>(partitions_.size());
    table.Gpt = present->Gpt;
    DWORD position = 0;
    for (const PartitionPtr& partition : SortedPartitions()) {
        PARTITION_INFORMATION_EX& entry = table.PartitionEntry[position];
        entry = partition->entry();
        entry.PartitionNumber = ++position;
    }
    layout_ = std::move(buffer);
    return WritePartitionTableToDisk(layout_);
}

}  // namespace bmr_common

#include "common/record/partition_rows.h"

#include "common/logger/trace.h"
#include "common/text/byte_range.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace {

// The size of a placeholder: compatibility C99
constexpr std::uint64_t kFakeDiskBytes = 500;
constexpr wchar_t kFreeSpace[] = L"Free space";

bool IsExtended(const PARTITION_INFORMATION& entry) {
    return entry.PartitionType == PARTITION_EXTENDED || entry.PartitionType == PARTITION_XINT13_EXTENDED;
}

std::int64_t EntryEnd(const PARTITION_INFORMATION& entry) {
    return EndOf(entry.StartingOffset.QuadPart, entry.PartitionLength.QuadPart);
}

// Walks the slots of a table in order. The cursor is the end of the space that the rows cover so far:
// compatibility C108
class RowBuilder {
public:
    RowBuilder(std::span<const PARTITION_INFORMATION> entries, std::vector<PartitionRow>& rows)
        : entries_(entries), rows_(rows) {}

    void AddPrimarySlots() {
        for (std::size_t slot = 0; slot < std::min<std::size_t>(entries_.size(), kPrimarySlots); ++slot) {
            const PARTITION_INFORMATION& entry = entries_[slot];
            if (entry.PartitionNumber == 0 && !IsExtended(entry)) {
                continue;
            }
            AddGap(kUnallocated, entry.StartingOffset.QuadPart);
            if (entry.PartitionNumber != 0) {
                AddPartition(kPrimary, entry);
            } else {
                AddLogicalPartitions();
                AddGap(kFreeSpace, EntryEnd(entry));
            }
        }
    }

    // If `offset` is beyond the cursor, adds a gap row between them. Moves the cursor to `offset`.
    void AddGap(const wchar_t* kind, std::int64_t offset) {
        if (offset > cursor_) {
            PartitionRow row;
            row.offset = cursor_;
            row.length = row.length_copy = LengthBetween(cursor_, offset);
            row.kind = row.operation = kind;
            row.partition_style = PARTITION_STYLE_MBR;
            rows_.push_back(std::move(row));
        }
        cursor_ = offset;
    }

    std::int64_t cursor() const { return cursor_; }

private:
    void AddLogicalPartitions() {
        // Reads only every fourth entry: compatibility C141
        for (std::size_t slot = kPrimarySlots; slot < entries_.size(); slot += kPrimarySlots) {
            if (entries_[slot].PartitionNumber != 0) {
                AddGap(kFreeSpace, entries_[slot].StartingOffset.QuadPart);
                AddPartition(L"Logical", entries_[slot]);
            }
        }
    }

    void AddPartition(const wchar_t* kind, const PARTITION_INFORMATION& entry) {
        PartitionRow row;
        row.offset = entry.StartingOffset.QuadPart;
        row.length = row.length_copy = entry.PartitionLength.QuadPart;
        row.kind = kind;
        row.operation = kExisting;
        row.active = entry.BootIndicator == 1;
        row.partition_number = static_cast<std::int32_t>(entry.PartitionNumber);
        row.mbr_type = entry.PartitionType;
        row.partition_style = PARTITION_STYLE_MBR;
        rows_.push_back(std::move(row));
        cursor_ = EntryEnd(entry);
    }

    std::span<const PARTITION_INFORMATION> entries_;
    std::vector<PartitionRow>& rows_;
    std::int64_t cursor_ = kFirstMegabyte;
};

}  // namespace

void BuildPartitionRows(std::span<const PARTITION_INFORMATION> entries, std::int64_t disk_length,
                        std::vector<PartitionRow>& rows) {
    rows.clear();
    RowBuilder builder(entries, rows);
    builder.AddPrimarySlots();
    if (builder.cursor() < disk_length) {
        builder.AddGap(kUnallocated, disk_length);
    }
}

void MakeWholeDiskRow(DiskRow& disk) {
    PartitionRow row;
    row.length = row.length_copy = static_cast<std::int64_t>(disk.size);
    row.kind = row.operation = kUnallocated;
    row.partition_number = 0;
    row.partition_style = disk.partition_style;
    disk.partitions.assign(1, row);
}

DiskRow CreateFakeDisk(std::uint32_t disk_number) {
    return Traced(L"EnumDisk::CreateFakeDisk", [&] {
        DiskRow disk;
        disk.size = kFakeDiskBytes;
        disk.disk_number = disk_number;
        MakeWholeDiskRow(disk);
        return disk;
    });
}

void InsertFakeDisks(std::int32_t maximum, std::vector<DiskRow>& disks) {
    std::stable_sort(disks.begin(), disks.end(), [](const DiskRow& left, const DiskRow& right) {
        return left.disk_number < right.disk_number;
    });
    std::vector<DiskRow> complete;
    auto next = disks.begin();
    for (std::int64_t number = 0; number <= maximum; ++number) {
        if (next != disks.end() && next->disk_number == number) {
            complete.push_back(std::move(*next++));
        } else {
            complete.push_back(CreateFakeDisk(static_cast<std::uint32_t>(number)));
        }
    }
    std::move(next, disks.end(), std::back_inserter(complete));
    disks = std::move(complete);
}

void SortDiskPartitionNumbers(DiskRow& disk) {
    std::map<std::int64_t, PartitionRow*> by_offset;  // the last row for each offset: compatibility C109
    for (PartitionRow& row : disk.partitions) {
        if (row.partition_number != -1) {
            by_offset[row.offset] = &row;
        }
    }
    std::int32_t number = 0;
    for (const auto& [offset, row] : by_offset) {
        ++number;
        if (row->partition_number != number) {
            GetLogger().Write(kLogTrace, L"%s changing partition number from %d to %d for volume %s",
                              L"SortDiskPartitionNumbers", row->partition_number, number,
                              row->volume.c_str());
            row->partition_number = number;
        }
    }
}

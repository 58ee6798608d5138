#pragma once

#include "common/record/rows.h"

#include <algorithm>
#include <cstdint>
#include <vector>

// Searches the disk rows.

// Calls `visit(row)` for the partition rows of the disk with that number, in order, until it returns false.
// `Disks` is a vector of DiskRow, const or not.
template <class Disks, class Visit>
void VisitRowsOf(Disks& disks, std::int64_t disk_number, Visit&& visit) {
    for (auto& disk : disks) {
        if (disk.disk_number == disk_number &&
            !std::all_of(disk.partitions.begin(), disk.partitions.end(), visit)) {
            return;
        }
    }
}

// The first partition row of that disk that starts at `offset` (bytes); null if there is none.
inline const PartitionRow* FindRowAt(const std::vector<DiskRow>& disks, std::uint32_t disk_number,
                                     std::uint64_t offset) {
    const PartitionRow* found = nullptr;
    VisitRowsOf(disks, disk_number, [&](const PartitionRow& row) {
        found = static_cast<std::uint64_t>(row.offset) == offset ? &row : nullptr;
        return found == nullptr;
    });
    return found;
}

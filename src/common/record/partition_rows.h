#pragma once

#include "common/record/rows.h"

#include <cstdint>
#include <span>
#include <vector>

// How partition rows are made, and numbered.

// The rows of a classic layout: partitions, and the space between them from the first megabyte to the end of
// the disk. `disk_length` is in bytes. Replaces `rows`.
void BuildPartitionRows(std::span<const PARTITION_INFORMATION> entries, std::int64_t disk_length,
                        std::vector<PartitionRow>& rows);

// Replaces the disk's rows by one "Unallocated" row over the whole disk.
void MakeWholeDiskRow(DiskRow& disk);

// A placeholder for a disk number without a usable disk, 500 bytes, unallocated: compatibility C99
DiskRow CreateFakeDisk(std::uint32_t disk_number);

// Puts the disks in order of their numbers and inserts a placeholder for every number up to and with
// `maximum` that they leave out.
void InsertFakeDisks(std::int32_t maximum, std::vector<DiskRow>& disks);

// Numbers the disk's partitions 1, 2, 3 in order of their offsets; gap rows keep -1.
void SortDiskPartitionNumbers(DiskRow& disk);

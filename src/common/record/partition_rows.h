#pragma once

#include "common/record/rows.h"

#include <cstdint>
#include <span>
#include <vector>

// The kinds and operations of rows that are built in more than one place.
inline constexpr wchar_t kUnallocated[] = L"Unallocated";
inline constexpr wchar_t kPrimary[] = L"Primary";
inline constexpr wchar_t kExisting[] = L"Existing";

// The lowest offset of the first gap: compatibility C103
inline constexpr std::int64_t kFirstMegabyte = 0x100000;

// The number of primary slots in a master boot record. The logical partitions of an extended partition use
// every fourth slot after them.
inline constexpr std::uint32_t kPrimarySlots = 4;

// Disk lists contain a row for every number up to the highest. No machine has a higher number than this.
inline constexpr std::int32_t kHighestDiskNumber = 65'535;

// Creates and numbers partition rows.

// Creates the rows of a classic layout: the partitions, and the gaps between them from the first megabyte to
// the end of the disk. `disk_length` is in bytes. Replaces `rows`.
void BuildPartitionRows(std::span<const PARTITION_INFORMATION> entries, std::int64_t disk_length,
                        std::vector<PartitionRow>& rows);

// Replaces the disk's rows with one "Unallocated" row for the whole disk.
void MakeWholeDiskRow(DiskRow& disk);

// Creates a placeholder of 500 unallocated bytes for a disk number without a usable disk: compatibility C99
DiskRow CreateFakeDisk(std::uint32_t disk_number);

// Sorts the disks by number and inserts a placeholder for every missing number up to and including `maximum`.
void InsertFakeDisks(std::int32_t maximum, std::vector<DiskRow>& disks);

// Numbers the disk's partitions 1, 2, 3 in order of their offsets. Gap rows keep -1.
void SortDiskPartitionNumbers(DiskRow& disk);

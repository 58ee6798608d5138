#pragma once

#include "machine/description/description.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace machine {

constexpr std::size_t kPrimarySlots = 4;

// Extended partition types: 0x05 and 0x0F.
bool IsContainerType(std::uint8_t mbr_type);

// Types for which the system creates a volume.
bool IsRecognizedType(std::uint8_t mbr_type);

// Numbers the used entries as the system does: the primary slots in slot order, then the logical partitions
// in chain order. Extended partitions, links and unused entries get 0. Sets the recognised flags: by type or,
// if the disk says so, of every numbered entry.
void NumberMbrEntries(Disk& disk);

// Appends the four entries of one extended boot record: the logical partition, the link to the next record,
// and two unused entries.
void AppendLogicalGroup(std::vector<Partition>& entries, const Partition& logical, const Partition& link);

// The first and last usable sector of a GPT disk with room for `entry_count` entries of 128 bytes.
struct GptBounds {
    std::uint64_t first = 0;
    std::uint64_t last = 0;  // inclusive; less than `first` if the disk is too small
};
GptBounds UsableSectors(std::uint64_t disk_size, std::uint32_t bytes_per_sector, std::uint32_t entry_count);

// Sets the disk's usable range from its size and maximum partition count.
void SetUsableRange(Disk& disk);

}  // namespace machine

#pragma once

#include "machine/description.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace machine {

constexpr std::size_t kPrimarySlots = 4;

// Types 0x05 and 0x0F.
bool IsContainerType(std::uint8_t mbr_type);

// Types that the system gives a volume to.
bool IsRecognizedType(std::uint8_t mbr_type);

// Numbers the used entries as the system does: the primary slots in slot order, then the logical partitions
// in chain order; containers, links and unused entries have none. Sets the recognised flag by type.
void NumberMbrEntries(std::vector<Partition>& entries);

// One extended boot record as a group of four entries: the logical partition, the link to the next record,
// and two unused ones.
void AppendLogicalGroup(std::vector<Partition>& entries, const Partition& logical, const Partition& link);

// The first and last usable sector of a GPT disk with room for `entry_count` entries of 128 bytes.
struct GptBounds {
    std::uint64_t first = 0;
    std::uint64_t last = 0;  // inclusive; below `first` when the disk is too small
};
GptBounds UsableSectors(std::uint64_t disk_size, std::uint32_t bytes_per_sector, std::uint32_t entry_count);

// Sets the usable range of the disk by its size and number of entries.
void SetUsableRange(Disk& disk);

}  // namespace machine

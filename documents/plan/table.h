#pragma once

#include "documents/model/machine.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace documents {

// An entry of a partition table that is to be made.
struct TableEntry {
    std::uint32_t number = 0;  // from 1; logical partitions from 5
    Range place;
    const Partition* partition = nullptr;  // none: the extended partition
};

// The type of an extended partition that is addressed by sectors.
inline constexpr std::uint8_t kUsualExtendedType = 0x0F;

// The partition table of a disk. Refers to the disk, which must outlive it.
struct Table {
    std::vector<TableEntry> entries;  // by number
    // The extended partition's place is not in the document and was taken from the logical ones.
    bool guessed_extended = false;
    bool told_slots = false;                          // of an MBR: the document has the slot of each entry
    std::uint8_t extended_type = kUsualExtendedType;  // that of the document, if it has one
    // The tools cannot make the logical partitions in the document's order; they are in that of their
    // offsets.
    bool sorted_logicals = false;
    std::uint32_t length = 128;    // of a GPT: the number of entries that it has room for
    std::size_t told_numbers = 0;  // of a GPT: how many entries have a number that the document tells
};

// Gives each partition its entry: on an MBR disk its slot, or, if the document does not tell the slots, the
// first ones in the order of the document, with the extended partition where it was among the others; on a
// GPT disk by the number that a volume tells, else the next free one. The disk must have a table in the
// document.
Table TableOf(const Disk& disk);

std::uint32_t SectorSizeOf(const Disk& disk);

// The sectors that a GPT leaves to partitions: from `first` on, and all but `behind` at the end.
struct GptReserve {
    std::uint64_t first = 0;
    std::uint64_t behind = 0;
};
GptReserve ReserveOf(const Table& table, std::uint32_t sector_size);

// The bytes that a disk must have for the table.
std::uint64_t NeededSize(const Disk& disk, const Table& table);

}  // namespace documents

#include "machine/description/partition_table.h"

#include <algorithm>

namespace machine {

bool IsContainerType(std::uint8_t mbr_type) {
    return IsContainerPartition(mbr_type);
}

bool IsRecognizedType(std::uint8_t mbr_type) {
    return IsRecognizedPartition(mbr_type);
}

void NumberMbrEntries(Disk& disk) {
    std::uint32_t number = 0;
    for (Partition& entry : disk.partitions) {
        const bool used = entry.mbr_type != PARTITION_ENTRY_UNUSED && !IsContainerType(entry.mbr_type);
        entry.number = used ? ++number : 0;
        entry.recognized = disk.recognizes_all ? used : IsRecognizedType(entry.mbr_type);
    }
}

void AppendLogicalGroup(std::vector<Partition>& entries, const Partition& logical, const Partition& link) {
    entries.push_back(logical);
    entries.push_back(link);
    entries.resize(entries.size() + 2);
}

GptBounds UsableSectors(std::uint64_t disk_size, std::uint32_t bytes_per_sector, std::uint32_t entry_count) {
    constexpr std::uint64_t kEntrySize = 128;
    const std::uint64_t table = (entry_count * kEntrySize + bytes_per_sector - 1) / bytes_per_sector;
    const std::uint64_t sectors = disk_size / bytes_per_sector;
    // The disk starts with protective record, header and table, and ends with backup table and backup
    // header.
    const std::uint64_t first = 2 + table;
    return {first, sectors > table + 2 ? sectors - table - 2 : 0};
}

void SetUsableRange(Disk& disk) {
    const GptBounds bounds = UsableSectors(disk.size, disk.bytes_per_sector, disk.max_partition_count);
    disk.starting_usable_offset = bounds.first * disk.bytes_per_sector;
    disk.usable_length =
        bounds.last >= bounds.first ? (bounds.last - bounds.first + 1) * disk.bytes_per_sector : 0;
}

}  // namespace machine

#include "documents/plan/table.h"

#include "documents/model/lookup.h"

#include <algorithm>
#include <limits>
#include <set>

namespace documents {

namespace {

constexpr std::uint32_t kFirstLogical = 5;
constexpr std::uint32_t kUsualSector = 512;
constexpr std::uint32_t kEntrySize = 128;

// From the end of the partition before the first logical one to the end of the last.
Range AroundLogicals(const Disk& disk) {
    Range around;
    std::uint64_t before = 0;
    bool found = false;
    for (const Partition* const partition : PartitionsByOffset(disk)) {
        if (partition->kind == PartitionKind::kLogical) {
            around.start = found ? around.start : before;
            around.length = EndOf(partition->place) - around.start;
            found = true;
        } else if (!found) {
            before = EndOf(partition->place);
        }
    }
    // The boot record of the disk is before all partitions.
    if (around.start == 0 && around.length > SectorSizeOf(disk)) {
        around.start += SectorSizeOf(disk);
        around.length -= SectorSizeOf(disk);
    }
    return around;
}

using Logicals = std::vector<const Partition*>;

// The tools make the partitions in the order of the script. Before a logical one that they have made, they
// keep 1 MiB for its record.
bool CanBeMadeInOrder(const Logicals& logicals) {
    constexpr std::uint64_t kKept = std::uint64_t{1} << 20U;
    std::set<std::uint64_t> made;  // where the logical partitions begin
    for (const Partition* const one : logicals) {
        const auto next = made.upper_bound(one->place.start);
        if (next != made.end() && *next < EndOf({EndOf(one->place), kKept})) {
            return false;
        }
        made.insert(one->place.start);
    }
    return true;
}

Logicals LogicalsOf(const Disk& disk) {
    Logicals logicals;
    for (const Partition& partition : *disk.partitions) {
        if (partition.kind == PartitionKind::kLogical) {
            logicals.push_back(&partition);
        }
    }
    return logicals;
}

void AddLogicals(const Disk& disk, Table& table) {
    Logicals logicals = LogicalsOf(disk);
    table.sorted_logicals = !CanBeMadeInOrder(logicals);
    if (table.sorted_logicals) {
        std::stable_sort(logicals.begin(), logicals.end(), [](const Partition* one, const Partition* other) {
            return one->place.start < other->place.start;
        });
    }
    std::uint32_t number = kFirstLogical;
    for (const Partition* const logical : logicals) {
        table.entries.push_back({number++, logical->place, logical});
    }
}

bool TellsSlots(const Disk& disk, bool extended) {
    return (!extended || disk.extended_entry) &&
           std::all_of(disk.partitions->begin(), disk.partitions->end(), [](const Partition& partition) {
               return partition.kind == PartitionKind::kLogical || partition.slot;
           });
}

void AddBySlot(const Disk& disk, Table& table) {
    for (const Partition& partition : *disk.partitions) {
        if (partition.kind == PartitionKind::kPrimary) {
            table.entries.push_back({*partition.slot, partition.place, &partition});
        }
    }
}

Table MbrTable(const Disk& disk) {
    Table table;
    AddLogicals(disk, table);
    const std::size_t primaries = disk.partitions->size() - table.entries.size();
    const bool extended = !table.entries.empty() || disk.extended;
    table.guessed_extended = extended && !disk.extended;
    table.told_slots = TellsSlots(disk, extended);
    table.extended_type = disk.extended_entry ? disk.extended_entry->type : kUsualExtendedType;
    const Range around = disk.extended ? *disk.extended : AroundLogicals(disk);
    if (table.told_slots) {
        AddBySlot(disk, table);
        if (extended) {
            table.entries.push_back({disk.extended_entry->slot, around, nullptr});
        }
        return table;
    }

    const std::size_t slot = disk.extended ? std::min(disk.primaries_before_extended, primaries) : primaries;
    std::uint32_t number = 1;
    std::size_t placed = 0;
    const auto add_extended = [&] {
        if (extended && placed == slot) {
            table.entries.push_back({number++, around, nullptr});
        }
    };
    for (const Partition& partition : *disk.partitions) {
        if (partition.kind == PartitionKind::kPrimary) {
            add_extended();
            table.entries.push_back({number++, partition.place, &partition});
            ++placed;
        }
    }
    if (slot == primaries) {
        add_extended();
    }
    return table;
}

Table GptTable(const Disk& disk) {
    Table table;
    std::set<std::uint32_t> taken;
    std::vector<const Partition*> others;
    for (const Partition& partition : *disk.partitions) {
        if (partition.system_number && taken.insert(*partition.system_number).second) {
            table.entries.push_back({*partition.system_number, partition.place, &partition});
        } else {
            others.push_back(&partition);
        }
    }
    table.told_numbers = table.entries.size();
    std::uint32_t next = 1;
    for (const Partition* const partition : others) {
        while (taken.contains(next)) {
            ++next;
        }
        table.entries.push_back({next++, partition->place, partition});
    }
    for (const TableEntry& entry : table.entries) {
        table.length = std::max(table.length, entry.number);
    }
    return table;
}

}  // namespace

std::uint32_t SectorSizeOf(const Disk& disk) {
    return disk.sector_size.value_or(kUsualSector);
}

Table TableOf(const Disk& disk) {
    Table table = disk.style == Style::kGpt ? GptTable(disk) : MbrTable(disk);
    std::sort(table.entries.begin(), table.entries.end(),
              [](const TableEntry& one, const TableEntry& other) { return one.number < other.number; });
    return table;
}

// The protective record, the header and the entries; at the end the entries and the header again.
GptReserve ReserveOf(const Table& table, std::uint32_t sector_size) {
    const std::uint64_t entries = (std::uint64_t{table.length} * kEntrySize + sector_size - 1) / sector_size;
    return {entries + 2, entries + 1};
}

std::uint64_t NeededSize(const Disk& disk, const Table& table) {
    std::uint64_t end = SectorSizeOf(disk);
    for (const TableEntry& entry : table.entries) {
        end = std::max(end, EndOf(entry.place));
    }
    if (disk.style != Style::kGpt) {
        return end;
    }
    const GptReserve reserve = ReserveOf(table, SectorSizeOf(disk));
    end = std::max(end, reserve.first * SectorSizeOf(disk));
    return EndOf({end, reserve.behind * SectorSizeOf(disk)});
}

}  // namespace documents

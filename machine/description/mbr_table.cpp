#include "machine/description/disk_image.h"
#include "machine/description/partition_table.h"

#include <algorithm>
#include <set>

namespace machine {
namespace {

constexpr std::size_t kMaxLogical = 1024;  // more than any real disk has; a longer chain is damaged

// The start of the entry is relative to sector `base`.
Partition BootEntry(const Bytes& sector, std::size_t slot, std::uint64_t base,
                    std::uint32_t bytes_per_sector) {
    const std::size_t at = kEntriesOffset + slot * kEntrySize;
    Partition entry;
    entry.mbr_type = sector[at + 4];
    if (entry.mbr_type == 0) {
        return entry;
    }
    entry.active = sector[at] == 0x80;
    entry.hidden_sectors = Get32(sector, at + 8);
    entry.offset = (base + entry.hidden_sectors) * bytes_per_sector;
    entry.length = static_cast<std::uint64_t>(Get32(sector, at + 12)) * bytes_per_sector;
    return entry;
}

void ReadChain(Disk& disk, ImageFile& image, std::uint64_t container_offset) {
    const std::uint32_t sector_size = disk.bytes_per_sector;
    const std::uint64_t container = container_offset / sector_size;
    std::set<std::uint64_t> visited;
    std::uint64_t record = container;
    while (visited.insert(record).second && visited.size() <= kMaxLogical &&
           (record + 1) * sector_size <= disk.size) {
        const Bytes sector = image.Read(record * sector_size, sector_size);
        if (Get16(sector, kBootSignatureOffset) != kBootSignature) {
            return;
        }
        const Partition link = BootEntry(sector, 1, container, sector_size);
        AppendLogicalGroup(disk.partitions, BootEntry(sector, 0, record, sector_size), link);
        if (!IsContainerType(link.mbr_type)) {
            return;
        }
        record = link.offset / sector_size;
    }
}

void PutRecord(const Disk& disk, Bytes& sector, std::size_t first, std::uint64_t entry_base,
               std::uint64_t link_base) {
    for (std::size_t slot = 0; slot < kPrimarySlots; ++slot) {
        const std::size_t index = first + slot;
        const Partition entry = index < disk.partitions.size() ? disk.partitions[index] : Partition{};
        const std::uint64_t base = IsContainerType(entry.mbr_type) ? link_base : entry_base;
        PutBootEntry(sector, slot, entry, entry.offset / disk.bytes_per_sector - base,
                     entry.length / disk.bytes_per_sector);
    }
    Put16(sector, kBootSignatureOffset, kBootSignature);
}

}  // namespace

void ReadMbrTable(Disk& disk, ImageFile& image, const Bytes& boot_sector) {
    disk.style = PARTITION_STYLE_MBR;
    disk.signature = Get32(boot_sector, kDiskSignatureOffset);
    disk.partitions.clear();
    for (std::size_t slot = 0; slot < kPrimarySlots; ++slot) {
        disk.partitions.push_back(BootEntry(boot_sector, slot, 0, disk.bytes_per_sector));
    }
    const auto container =
        std::find_if(disk.partitions.begin(), disk.partitions.end(),
                     [](const Partition& entry) { return IsContainerType(entry.mbr_type); });
    if (container != disk.partitions.end()) {
        ReadChain(disk, image, container->offset);
    }
    NumberMbrEntries(disk);
}

void WriteMbrTable(const Disk& disk, ImageFile& image) {
    Bytes sector = image.Read(0, disk.bytes_per_sector);
    Put32(sector, kDiskSignatureOffset, disk.signature);
    PutRecord(disk, sector, 0, 0, 0);
    image.Write(0, sector);

    std::uint64_t container = 0;
    for (std::size_t slot = 0; slot < std::min(kPrimarySlots, disk.partitions.size()); ++slot) {
        if (IsContainerType(disk.partitions[slot].mbr_type)) {
            container = disk.partitions[slot].offset / disk.bytes_per_sector;
            break;
        }
    }
    std::uint64_t record = container;
    for (std::size_t group = kPrimarySlots; record != 0 && group < disk.partitions.size();
         group += kPrimarySlots) {
        Bytes logical(disk.bytes_per_sector);
        PutRecord(disk, logical, group, record, container);
        image.Write(record * disk.bytes_per_sector, logical);
        const bool linked =
            group + 1 < disk.partitions.size() && IsContainerType(disk.partitions[group + 1].mbr_type);
        record = linked ? disk.partitions[group + 1].offset / disk.bytes_per_sector : 0;
    }
}

}  // namespace machine

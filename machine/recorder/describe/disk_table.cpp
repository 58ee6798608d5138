#include "machine/recorder/describe/disk_table.h"

#include "machine/description/newer_members.h"
#include "machine/description/partition_table.h"
#include "machine/recorder/describe/control_calls.h"
#include "machine/recorder/observe/answer_bytes.h"

#include <algorithm>
#include <map>

namespace recorder {
namespace {

// Only whole boot records with a partition can be described. One entry alone is that of a file system without
// a table.
void KeepWholeRecords(std::vector<machine::Partition>& entries) {
    constexpr std::size_t kSlots = machine::kPrimarySlots;
    if (entries.size() == 1 &&
        (entries.front().mbr_type == PARTITION_ENTRY_UNUSED || entries.front().number > 1)) {
        entries.resize(kSlots);
    }
    std::size_t kept = std::min(kSlots, entries.size());
    for (std::size_t record = kSlots; record + kSlots <= entries.size(); record += kSlots) {
        if (entries[record].mbr_type != PARTITION_ENTRY_UNUSED) {
            std::move(entries.begin() + static_cast<std::ptrdiff_t>(record),
                      entries.begin() + static_cast<std::ptrdiff_t>(record + kSlots),
                      entries.begin() + static_cast<std::ptrdiff_t>(kept));
            kept += kSlots;
        }
    }
    entries.resize(kept);
}

void DescribeLayout(const Bytes& bytes, bool geometry_told, machine::Disk& disk) {
    const auto layout = LayoutHeaderIn(bytes);
    if (!layout) {
        return;
    }
    disk.style = layout->PartitionStyle;
    // The geometry tells a disk without a table from an MBR without slots.
    const bool empty = disk.style == PARTITION_STYLE_MBR && layout->PartitionCount == 0;
    disk.blank = empty && (disk.blank || !geometry_told);
    if (disk.style == PARTITION_STYLE_GPT) {
        disk.disk_id = layout->Gpt.DiskId;
        disk.starting_usable_offset = static_cast<std::uint64_t>(layout->Gpt.StartingUsableOffset.QuadPart);
        disk.usable_length = static_cast<std::uint64_t>(layout->Gpt.UsableLength.QuadPart);
        disk.max_partition_count = layout->Gpt.MaxPartitionCount;
    } else if (disk.style == PARTITION_STYLE_MBR) {
        disk.signature = layout->Mbr.Signature;
        disk.layout_checksum = RecordAt<std::uint32_t>(bytes, machine::kMbrLayoutChecksum).value_or(0);
    }
    disk.partitions = PartitionsIn(bytes);
    if (disk.style == PARTITION_STYLE_MBR) {
        KeepWholeRecords(disk.partitions);
    }
}

// The boot record of a partition: its hidden sectors are the distance from there.
std::uint64_t RecordOf(const machine::Partition& partition, const machine::Disk& disk) {
    return partition.offset - std::uint64_t{partition.hidden_sectors} * disk.bytes_per_sector;
}

// Partitions that have boot records of their own lie in an extended partition, which no volume tells of.
void PutLogical(const std::vector<machine::Partition>& logical, machine::Disk& disk) {
    constexpr std::uint8_t kExtendedLba = 0x0F;
    machine::Partition container;
    container.style = PARTITION_STYLE_MBR;
    container.mbr_type = kExtendedLba;
    container.offset = RecordOf(logical.front(), disk);
    container.length = logical.back().offset + logical.back().length - container.offset;
    container.hidden_sectors = static_cast<std::uint32_t>(container.offset / disk.bytes_per_sector);
    disk.partitions.push_back(container);
    disk.partitions.resize(machine::kPrimarySlots);
    for (std::size_t i = 0; i < logical.size(); ++i) {
        machine::Partition link;
        link.style = PARTITION_STYLE_MBR;
        if (i + 1 < logical.size()) {
            const machine::Partition& next = logical[i + 1];
            link.mbr_type = PARTITION_EXTENDED;
            link.offset = RecordOf(next, disk);
            link.length = next.offset + next.length - link.offset;
            link.hidden_sectors =
                static_cast<std::uint32_t>((link.offset - container.offset) / disk.bytes_per_sector);
        }
        machine::AppendLogicalGroup(disk.partitions, logical[i], link);
    }
}

// A table of these partitions, sorted by their numbers. More than four need an extended partition.
void PutMbrTable(std::vector<machine::Partition> partitions, machine::Disk& disk) {
    std::vector<machine::Partition> logical;
    if (partitions.size() > machine::kPrimarySlots) {
        const auto first =
            std::find_if(partitions.begin(), partitions.end(),
                         [&](const machine::Partition& partition) { return RecordOf(partition, disk) != 0; });
        logical.assign(first, partitions.end());
        partitions.erase(first, partitions.end());
    }
    if (partitions.size() > machine::kPrimarySlots - (logical.empty() ? 0 : 1)) {
        return;
    }
    disk.style = PARTITION_STYLE_MBR;
    disk.partitions = std::move(partitions);
    if (logical.empty()) {
        disk.partitions.resize(machine::kPrimarySlots);
    } else {
        PutLogical(logical, disk);
    }
}

// The partitions of a disk that volumes tell of, by their numbers.
std::map<std::uint32_t, machine::Partition> PartitionsOfVolumes(const Observations& observations,
                                                                const machine::Disk& disk) {
    std::map<std::uint32_t, machine::Partition> found;
    for (const std::wstring& object : observations.ObjectsOf(kExtents)) {
        const Bytes* extents = observations.BytesOf(kExtents, object);
        const auto own =
            PartitionIn(observations.BytesOf(kPartitionEx, object), observations.BytesOf(kPartition, object));
        const auto list = extents == nullptr ? std::vector<DISK_EXTENT>() : ExtentsIn(*extents);
        if (own && list.size() == 1 && list.front().DiskNumber == disk.index && own->number != 0) {
            found.emplace(own->number, *own);
        }
    }
    return found;
}

// The members that the older layout lacks are taken from volumes.
void DescribeOlderLayout(const Observations& observations, const Bytes& bytes, machine::Disk& disk) {
    disk.style = PARTITION_STYLE_MBR;
    disk.signature =
        RecordAt<DWORD>(bytes, offsetof(DRIVE_LAYOUT_INFORMATION, Signature)).value_or(disk.signature);
    disk.partitions = OlderPartitionsIn(bytes);
    const auto found = PartitionsOfVolumes(observations, disk);
    for (machine::Partition& partition : disk.partitions) {
        const auto own = found.find(partition.number);
        if (own != found.end() && own->second.offset == partition.offset) {
            partition.id = own->second.id;
            partition.service = own->second.service;
        }
    }
    KeepWholeRecords(disk.partitions);
}

// A disk whose table nothing tells has the partitions of its volumes, and the style of the first one.
void DescribeByVolumes(const Observations& observations, machine::Disk& disk) {
    const auto found = PartitionsOfVolumes(observations, disk);
    if (found.empty()) {
        return;
    }
    std::vector<machine::Partition> partitions;
    partitions.reserve(found.size());
    for (const auto& [number, partition] : found) {
        partitions.push_back(partition);
    }
    if (partitions.front().style == PARTITION_STYLE_MBR) {
        PutMbrTable(std::move(partitions), disk);
    } else {
        disk.style = PARTITION_STYLE_GPT;
        disk.partitions = std::move(partitions);
        machine::SetUsableRange(disk);
    }
}

}  // namespace

void DescribeTable(const Observations& observations, const std::wstring& path, machine::Disk& disk) {
    if (const Bytes* layout = observations.BytesOf(kLayoutEx, path)) {
        const Bytes* geometry = observations.BytesOf(kGeometryEx, path);
        DescribeLayout(*layout, geometry != nullptr && PartitionInfoIn(*geometry), disk);
    } else if (const Bytes* older = observations.BytesOf(kLayout, path)) {
        DescribeOlderLayout(observations, *older, disk);
    } else if (!disk.blank) {
        DescribeByVolumes(observations, disk);
    }
}

}  // namespace recorder

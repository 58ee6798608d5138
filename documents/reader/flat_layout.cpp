#include "documents/reader/flat_layout.h"

#include "documents/model/lookup.h"
#include "documents/reader/gaps.h"
#include "documents/text/read_error.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace documents {

namespace {

// A number without a disk.
constexpr std::uint64_t kPlaceholderSize = 500;

bool SaysNothing(const Extent& extent) {
    return extent.disk == 0 && extent.place == Range{} && !extent.signature && !extent.disk_id;
}

}  // namespace

std::span<const ElementRule> FlatLayout::Rules() const {
    using Take = void (Layout::*)(Row&);
    static const ElementRule kRules[] = {
        {"DiskDrives", 5, "y", true, 0, "size_idy", static_cast<Take>(&FlatLayout::TakeRow)},
        {"DiskDrives", 4, "x", true, 0, "size_idx", static_cast<Take>(&FlatLayout::TakeDisk)},
        {"DiskDrives", 3, "DiskDrives", false, 0, "", static_cast<Take>(&FlatLayout::TakeDiskDrives)},
        {"VolumeTable", 5, "extent", true, 0, "", static_cast<Take>(&FlatLayout::TakeExtent)},
        {"VolumeTable", 4, "volume", true, 0, "TotalVolumes", static_cast<Take>(&FlatLayout::TakeVolume)},
        {"VolumeTable", 3, "VolumeTable", false, 0, "", static_cast<Take>(&FlatLayout::TakeVolumeTable)},
        {"DriveLetterTable", 4, "Drive", true, 0, "TotalDrives", static_cast<Take>(&FlatLayout::TakeDrive)},
        {"DriveLetterTable", 3, "DriveLetterTable", false, 0, "",
         static_cast<Take>(&FlatLayout::TakeDriveLetterTable)},
        {"BootConfig", 3, "BootConfig", false, 0, "", static_cast<Take>(&FlatLayout::TakeBootConfig)},
    };
    return kRules;
}

void FlatLayout::TakeRow(Row& row) {
    const std::uint64_t length = row.SizeWrittenSigned("size");
    const Range place{row.SizeWrittenSigned("start"), length};
    const std::string_view kind = row.Text("parttype");
    if (kind == "Primary") {
        TakePartition(row, place, PartitionKind::kPrimary);
    } else if (kind == "Logical") {
        TakeRowInExtended(place);
        TakePartition(row, place, PartitionKind::kLogical);
    } else if (kind == "Unallocated" || kind == "Free space") {
        if (kind == "Free space") {
            TakeRowInExtended(place);
        }
        rows_.gaps.push_back({place, kind == "Free space"});
        row.ReadTheRest();
    } else {
        row.Refuse("parttype", "\"" + std::string(kind) + "\" is no kind of row");
    }
}

// The rows in an extended partition stand at its slot. The first is the free space that it begins with; the
// last one ends where it ends.
void FlatLayout::TakeRowInExtended(const Range& place) {
    if (!rows_.extended) {
        rows_.extended = place;
        rows_.primaries_before_extended = rows_.partitions.size();
    } else if (EndOf(place) > rows_.extended->start) {
        rows_.extended->length = EndOf(place) - rows_.extended->start;
    }
}

void FlatLayout::TakePartition(Row& row, const Range& place, PartitionKind kind) {
    Partition partition;
    partition.place = place;
    partition.kind = kind;
    const std::uint64_t type = row.Unsigned("mbr_partition_type", std::numeric_limits<std::uint8_t>::max());
    partition.gpt_type = row.Guid("gpt_partition_type");
    const std::int64_t style = row.Signed("partition_style");
    if (style != 0 && style != 1) {
        row.Refuse("partition_style", std::to_string(style) + " is no style of a partition");
    }
    partition.id = row.Guid("partition_guid");
    row.Signed("hidden");  // always 0
    const bool active = row.Truth("primary", "1", "0");
    if (style == 0) {
        partition.mbr_type = static_cast<std::uint8_t>(type);
        partition.active = active;
    }
    const std::int64_t number = row.Signed("partition");
    if (number > 0 && number <= std::numeric_limits<std::int32_t>::max()) {
        partition.row_number = static_cast<std::uint32_t>(number);
    }
    partition.drive = NotEmpty(row.Text("drive"));
    // "C:" in format 1
    if (partition.drive && partition.drive->ends_with(':')) {
        *partition.drive += '\\';
    }
    partition.file_system = NotEmpty(row.Text("fs"));
    partition.volume = NotEmpty(row.Text("volume"));
    row.Text("operation");
    rows_.partitions.push_back(std::move(partition));
}

// Format 1 has no styles of disks, but only MBR disks have partitions in it.
void FlatLayout::TakeStyle(Row& row, Disk& disk) const {
    const std::int64_t style = row.Signed("partition_style");
    if (style < 0 || style > 2) {
        row.Refuse("partition_style", std::to_string(style) + " is no style of a disk");
    }
    if (machine_.format == Format::kTwo) {
        disk.style = static_cast<Style>(style);
    } else if (!rows_.partitions.empty()) {
        disk.style = Style::kMbr;
    }
}

void FlatLayout::TakeDisk(Row& row) {
    Disk disk;
    const std::int64_t index = row.Signed("index");
    disk.number = static_cast<std::uint32_t>(index);
    TakeStyle(row, disk);
    disk.id = row.Guid("disk_guid");
    const std::uint64_t size = row.SizeWrittenSigned("size");
    disk.size = NotZero(size);
    disk.sector_size = NotZero(row.Unsigned32("disk_bytes_per_sector"));
    disk.interface_type = NotEmpty(row.Text("interface"));
    Rows rows = std::exchange(rows_, {});
    if (size == kPlaceholderSize && !disk.sector_size) {
        machine_.placeholders.push_back(disk.number);
        return;
    }
    if (!disk.size) {
        disk.style.reset();
    } else if (disk.style != Style::kRaw) {
        disk.gaps = FreeOf(std::move(rows.gaps), rows.partitions);
        disk.dynamic = std::any_of(rows.partitions.begin(), rows.partitions.end(), IsDynamicType);
        disk.partitions = std::move(rows.partitions);
        disk.extended = rows.extended;
        disk.primaries_before_extended = rows.primaries_before_extended;
    }
    machine_.disks.push_back(std::move(disk));
}

void FlatLayout::TakeDiskDrives(Row& /*row*/) {
    std::stable_sort(machine_.disks.begin(), machine_.disks.end(),
                     [](const Disk& one, const Disk& other) { return one.number < other.number; });
}

Extent FlatLayout::PlaceOf(Row& row) {
    Extent extent;
    extent.signature = NotZero(row.Unsigned32("m_dwDiskSignature"));
    extent.disk_id = row.Guid("disk_guid");
    row.Text("m_GUID");
    extent.place.start = row.Unsigned("m_offsetPartition");
    extent.place.length = row.Unsigned("m_Size");
    extent.disk = row.Unsigned32("m_DiskNumber");
    const std::int64_t number = row.Signed("m_PartitionNumber");
    if (number > 0 && number <= std::numeric_limits<std::int32_t>::max()) {
        extent.partition_number = static_cast<std::uint32_t>(number);
    }
    return extent;
}

void FlatLayout::TakeExtent(Row& row) {
    extents_.push_back(PlaceOf(row));
}

void FlatLayout::TakeVolume(Row& row) {
    Volume volume;
    volume.reference = NotEmpty(row.Peek("m_GUID"));
    Extent first = PlaceOf(row);
    volume.size = NotZero(first.place.length);
    const std::uint64_t used = row.Unsigned("m_FileSystemUsedSpace");
    volume.path = NotEmpty(row.Text("Name"));
    volume.device = NotEmpty(row.Text("DeviceName"));
    volume.letter = std::string(row.Text("VolumeLetter"));
    const std::string label(row.Text("Label"));
    const std::uint32_t serial = row.Unsigned32("Serial");
    volume.file_system = NotEmpty(row.Text("FileSystem"));
    const std::uint32_t flags = row.Unsigned32("Flags");
    // These come from one query, whose failure leaves all of them empty.
    if (volume.file_system) {
        volume.label = label;
        volume.serial = serial;
        volume.flags = flags;
    }
    volume.system = row.Truth("SystemVolume", "1", "0");
    volume.dynamic = row.Truth("Dynamic", "1", "0");
    volume.block_size = NotZero(row.Unsigned32("BlockSize"));
    if (volume.block_size) {
        volume.used = used;
    }
    volume.extents = std::exchange(extents_, {});
    if (!SaysNothing(first)) {
        volume.first_extent = std::move(first);
    }
    machine_.volumes.push_back(std::move(volume));
}

void FlatLayout::TakeVolumeTable(Row& /*row*/) {}

void FlatLayout::TakeDrive(Row& row) {
    std::string drive(row.Text("m_strDrive"));
    machine_.drive_letters.push_back({std::move(drive), std::string(row.Text("m_guidVolume"))});
}

void FlatLayout::TakeDriveLetterTable(Row& /*row*/) {}

void FlatLayout::TakeBootConfig(Row& row) {
    machine_.boot_reference = NotEmpty(row.Text("m_guidBootVolume"));
    machine_.system_reference = NotEmpty(row.Text("m_guidSystemVolume"));
}

void FlatLayout::Finish() {
    RequireDisks();
    for (Volume& volume : machine_.volumes) {
        volume.boot = machine_.boot_reference && volume.reference == machine_.boot_reference;
    }
    GiveSystemNumbers();
    GiveIdsToDisks();
}

Disk* FlatLayout::DiskOf(std::uint32_t number) {
    return const_cast<Disk*>(FindDisk(machine_, number));
}

// The tables list every number up to the largest, so an extent on another disk contradicts them.
void FlatLayout::RequireDisks() const {
    for (std::size_t volume = 0; volume < machine_.volumes.size(); ++volume) {
        const std::vector<Extent>& extents = *machine_.volumes[volume].extents;
        for (std::size_t index = 0; index < extents.size(); ++index) {
            const std::uint32_t disk = extents[index].disk;
            if (FindDisk(machine_, disk) == nullptr &&
                !std::binary_search(machine_.placeholders.begin(), machine_.placeholders.end(), disk)) {
                throw ReadError("VolumeTable/volume" + std::to_string(volume) + "/extent" +
                                    std::to_string(index) + "/m_DiskNumber",
                                "the document has no disk " + std::to_string(disk));
            }
        }
    }
}

// The number that the system gives a partition is in the extent of a basic volume that begins where it does.
// In format 1 the numbers of extents are made up.
void FlatLayout::GiveSystemNumbers() {
    if (machine_.format != Format::kTwo) {
        return;
    }
    std::map<std::pair<std::uint32_t, std::uint64_t>, std::uint32_t> numbers;
    for (const Volume& volume : machine_.volumes) {
        for (const Extent& extent : *volume.extents) {
            if (volume.dynamic == false && extent.partition_number) {
                numbers.emplace(std::pair(extent.disk, extent.place.start), *extent.partition_number);
            }
        }
    }
    for (Disk& disk : machine_.disks) {
        if (!disk.partitions) {
            continue;
        }
        for (Partition& partition : *disk.partitions) {
            const auto found = numbers.find({disk.number, partition.place.start});
            if (found != numbers.end()) {
                partition.system_number = found->second;
            }
        }
    }
}

// Only the volumes have the signatures of MBR disks.
void FlatLayout::GiveIdsToDisks() {
    for (const Volume& volume : machine_.volumes) {
        for (const Extent& extent : *volume.extents) {
            Disk* const disk = DiskOf(extent.disk);
            if (disk != nullptr && !disk->signature && disk->style != Style::kGpt) {
                disk->signature = extent.signature;
            }
        }
    }
}

}  // namespace documents

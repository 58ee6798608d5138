#include "documents/reader/model_layout.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace documents {

namespace {

// The entries before the first logical partition's are the four of the MBR.
constexpr std::size_t kPrimarySlots = 4;

bool IsExtendedType(std::uint64_t type) {
    return type == 0x05 || type == 0x0F;
}

bool IsTrue(Row& row, std::string_view name) {
    return row.Truth(name, "True", "False");
}

std::optional<bool> TruthIfThere(Row& row, std::string_view name) {
    return row.Has(name) ? std::optional(IsTrue(row, name)) : std::nullopt;
}

// The drive root that comes first in the alphabet; empty if there is none.
std::string FirstLetter(const std::vector<std::string>& mount_points) {
    std::string first;
    for (const std::string& path : mount_points) {
        const bool root = path.size() == 3 && path.ends_with(":\\");
        if (root && (first.empty() || path < first)) {
            first = path;
        }
    }
    return first;
}

// By the kind of the detection record. None of it is needed to restore a disk.
void TakeDetection(Row& row) {
    static constexpr std::string_view kInt13[] = {"DriveSelect", "MaxCylinders", "SectorsPerTrack",
                                                  "MaxHeads", "NumberDrives"};
    static constexpr std::string_view kExtended[] = {"ExBufferSize", "ExFlags",           "ExCylinders",
                                                     "ExHeads",      "ExSectorsPerTrack", "ExSectorsPerDrive",
                                                     "ExSectorSize", "ExReserved"};
    const std::int64_t type = row.Signed("DetectionType");
    std::span<const std::string_view> names;
    if (type == 1) {
        names = kInt13;
    } else if (type == 2) {
        names = kExtended;
    }
    for (const std::string_view name : names) {
        row.Text(name);
    }
}

// Values that come from one query are there together or not at all.
void TakeFileSystem(Row& row, Volume& volume) {
    if (!row.Has("SerialNumber")) {
        return;
    }
    const std::uint32_t serial = row.Unsigned32("SerialNumber");
    std::string label(row.Text("VolumeLabel"));
    row.Unsigned("MaxComponentLength");
    volume.file_system = NotEmpty(row.Text("FileSystem"));
    const std::uint32_t flags = row.Unsigned32("FileSystemFlags");
    if (volume.file_system) {
        volume.serial = serial;
        volume.label = std::move(label);
        volume.flags = flags;
    }
}

void TakeMountPoints(Machine& machine, Row& row, Volume& volume) {
    if (!row.Has("NumberOfMountPoints")) {
        return;
    }
    volume.mount_points = NumberedTexts(machine, row, "NumberOfMountPoints", "MountPoint", 1);
    volume.letter = FirstLetter(*volume.mount_points);
}

void TakeSpace(Row& row, Volume& volume) {
    if (row.Has("SectorsPerCluster")) {
        row.Unsigned("SectorsPerCluster");
        row.Unsigned("BytesPerSector");
        volume.block_size = NotZero(row.Unsigned32("VolumeBlockSize"));
    }
    if (row.Has("FreeUserSpaces")) {
        row.Unsigned("FreeUserSpaces");
        const std::uint64_t total = row.Unsigned("TotalUserSpaces");
        volume.free = row.Unsigned("TotalFreeSpaces");
        if (total >= *volume.free) {
            volume.used = total - *volume.free;
        }
    }
    if (row.Has("VornUsedSpaces")) {
        row.Text("VornUsedSpaces");
    }
}

}  // namespace

std::span<const ElementRule> ModelLayout::Rules() const {
    using Take = void (Layout::*)(Row&);
    static const ElementRule kRules[] = {
        {"DeviceInfo", 5, "Partition", true, 1, "NumberOfPartitions",
         static_cast<Take>(&ModelLayout::TakePartition)},
        {"DeviceInfo", 4, "Disk", true, 1, "NumberOfDisks", static_cast<Take>(&ModelLayout::TakeDisk)},
        {"DeviceInfo", 3, "DeviceInfo", false, 0, "", static_cast<Take>(&ModelLayout::TakeDeviceInfo)},
        {"VolumeInfo", 5, "Extent", true, 1, "NumberOfDiskExtents",
         static_cast<Take>(&ModelLayout::TakeExtent)},
        {"VolumeInfo", 4, "Volume", false, 0, "NumberOfVolumes", static_cast<Take>(&ModelLayout::TakeVolume)},
        {"VolumeInfo", 3, "VolumeInfo", false, 0, "", static_cast<Take>(&ModelLayout::TakeVolumeInfo)},
    };
    return kRules;
}

void ModelLayout::TakePartition(Row& row) {
    const std::size_t entry = entries_++;
    IsTrue(row, "DynamicPartition");
    const std::uint32_t number = row.Unsigned32("PartitionNumber");
    const std::uint64_t start = row.Unsigned("Offset");
    const Range place{start, row.Unsigned("Length")};
    IsTrue(row, "RewritePartition");
    row.Text(row.Has("Style") ? "Style" : "PartitionStyle");
    const std::uint64_t type =
        row.Has("Type") ? row.Unsigned("Type", std::numeric_limits<std::uint8_t>::max()) : 0;
    const std::optional<bool> active = TruthIfThere(row, "BootIndicator");
    TruthIfThere(row, "RecognizedPartition");
    if (row.Has("HiddenSectors")) {
        row.Unsigned("HiddenSectors");
    }
    if (number == 0) {
        if (IsExtendedType(type) && entry < kPrimarySlots) {
            extended_ = place;
            extended_entry_ = {static_cast<std::uint32_t>(entry + 1), static_cast<std::uint8_t>(type)};
            primaries_before_extended_ = partitions_.size();
        }
        return;
    }
    Partition partition;
    partition.place = place;
    partition.kind = entry < kPrimarySlots ? PartitionKind::kPrimary : PartitionKind::kLogical;
    partition.mbr_type = static_cast<std::uint8_t>(type);
    partition.active = active;
    partition.system_number = number;
    if (partition.kind == PartitionKind::kPrimary) {
        partition.slot = static_cast<std::uint32_t>(entry + 1);
    }
    partitions_.push_back(std::move(partition));
}

void ModelLayout::TakeStyle(Row& row, Disk& disk) {
    const std::string_view style = row.Text("PartitionStyle");
    if (style == "MBR") {
        disk.style = Style::kMbr;
        disk.signature = NotZero(row.Unsigned32("Signature"));
    } else if (style == "GPT") {
        disk.style = Style::kGpt;
        row.Text("GUID");  // an address in the memory of the process that captured
    } else if (style == "RAW") {
        disk.style = Style::kRaw;
    } else if (style != "UNKNOWN") {
        row.Refuse("PartitionStyle", "\"" + std::string(style) + "\" is no style of a disk");
    }
}

void ModelLayout::TakeReadableDisk(Row& row, Disk& disk) {
    Geometry geometry;
    geometry.cylinders = row.Signed("Cyclinders");
    geometry.media_type = static_cast<std::int32_t>(row.Signed("MediaType"));
    geometry.tracks_per_cylinder = row.Unsigned32("TracksPerCylinder");
    geometry.sectors_per_track = row.Unsigned32("SectorsPerTrack");
    disk.geometry = geometry;
    disk.sector_size = NotZero(row.Unsigned32("bytes_per_sector"));
    TakeStyle(row, disk);
    TakeDetection(row);
    if (disk.style == Style::kMbr) {
        row.Text("PartitionStyle");  // the number of what was a word above
        disk.partitions = std::exchange(partitions_, {});
        disk.extended = std::exchange(extended_, {});
        disk.extended_entry = std::exchange(extended_entry_, {});
        disk.primaries_before_extended = std::exchange(primaries_before_extended_, 0);
    }
}

void ModelLayout::TakeDisk(Row& row) {
    Disk disk;
    disk.number = row.Unsigned32("DiskId");
    disk.dynamic = TruthIfThere(row, "DynamicDisk");
    disk.size = NotZero(row.Unsigned("DiskSize"));
    // A disk that cannot be backed up has nothing else.
    if (row.Has("Cyclinders")) {
        TakeReadableDisk(row, disk);
    }
    partitions_.clear();
    extended_.reset();
    extended_entry_.reset();
    entries_ = 0;
    machine_.disks.push_back(std::move(disk));
}

// The document has them in the order of their numbers as text.
void ModelLayout::TakeDeviceInfo(Row& /*row*/) {
    std::stable_sort(machine_.disks.begin(), machine_.disks.end(),
                     [](const Disk& one, const Disk& other) { return one.number < other.number; });
}

void ModelLayout::TakeExtent(Row& row) {
    Extent extent;
    extent.disk = row.Unsigned32("DiskNumber");
    extent.place.start = row.Unsigned("DiskOffset");
    extent.place.length = row.Unsigned("ExtentLength");
    extents_.push_back(extent);
}

void ModelLayout::TakeVolume(Row& row) {
    Volume volume;
    if (row.Has("VolumeId")) {
        volume.path = NotEmpty(row.Text("VolumeId"));
        row.Text("VolumeGUID");
    }
    volume.device = NotEmpty(row.Text("DeviceName"));
    TakeFileSystem(row, volume);
    if (row.Has("VolumePartitionSize")) {
        volume.size = NotZero(row.Unsigned("VolumePartitionSize"));
    }
    TakeMountPoints(machine_, row, volume);
    TakeSpace(row, volume);
    volume.system = IsTrue(row, "SystemVolume");
    volume.boot = IsTrue(row, "BootVolume");
    volume.dynamic = TruthIfThere(row, "DynamicVolume");
    volume.active = TruthIfThere(row, "ActivePartition");
    if (!row.Peek("NumberOfDiskExtents").empty()) {
        volume.extents = std::exchange(extents_, {});
    }
    extents_.clear();
    machine_.volumes.push_back(std::move(volume));
}

}  // namespace documents

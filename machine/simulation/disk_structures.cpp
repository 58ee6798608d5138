#include "machine/simulation/disk_structures.h"

#include "machine/description/newer_members.h"

#include <algorithm>
#include <cstddef>

namespace machine {
namespace {

// DISK_GEOMETRY_EX with the records that the disk driver puts in place of the trailing byte array.
struct FullGeometry {
    DISK_GEOMETRY geometry;
    LARGE_INTEGER disk_size;
    DISK_PARTITION_INFO partition;
    DISK_DETECTION_INFO detection;
};
static_assert(offsetof(FullGeometry, partition) == offsetof(DISK_GEOMETRY_EX, Data));
static_assert(sizeof(PARTITION_INFORMATION_EX) == 144);
static_assert(offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry) == 48);

DISK_GEOMETRY Geometry(const Disk& disk) {
    DISK_GEOMETRY geometry{};
    geometry.Cylinders.QuadPart = static_cast<LONGLONG>(disk.cylinders);
    StoreNumber(geometry.MediaType, disk.media_type);
    geometry.TracksPerCylinder = disk.tracks_per_cylinder;
    geometry.SectorsPerTrack = disk.sectors_per_track;
    geometry.BytesPerSector = disk.bytes_per_sector;
    return geometry;
}

PARTITION_INFORMATION Information(const Partition& partition) {
    PARTITION_INFORMATION information{};
    information.StartingOffset.QuadPart = static_cast<LONGLONG>(partition.offset);
    information.PartitionLength.QuadPart = static_cast<LONGLONG>(partition.length);
    information.HiddenSectors = partition.hidden_sectors;
    information.PartitionNumber = partition.number;
    information.PartitionType = partition.mbr_type;
    information.BootIndicator = partition.active;
    information.RecognizedPartition = partition.recognized;
    information.RewritePartition = partition.rewrite;
    return information;
}

PARTITION_INFORMATION_EX InformationEx(const Partition& partition) {
    PARTITION_INFORMATION_EX information{};
    StoreNumber(information.PartitionStyle, partition.style);
    information.StartingOffset.QuadPart = static_cast<LONGLONG>(partition.offset);
    information.PartitionLength.QuadPart = static_cast<LONGLONG>(partition.length);
    information.PartitionNumber = partition.number;
    information.RewritePartition = partition.rewrite;
    if (partition.style == PARTITION_STYLE_GPT) {
        information.Gpt.PartitionType = partition.gpt_type;
        information.Gpt.PartitionId = partition.id;
        information.Gpt.Attributes = partition.gpt_attributes;
        const std::size_t length = std::min(partition.gpt_name.size(), std::size(information.Gpt.Name));
        std::copy_n(partition.gpt_name.begin(), length, information.Gpt.Name);
    } else if (partition.style == PARTITION_STYLE_MBR) {
        information.Mbr.PartitionType = partition.mbr_type;
        information.Mbr.BootIndicator = partition.active;
        information.Mbr.RecognizedPartition = partition.recognized;
        information.Mbr.HiddenSectors = partition.hidden_sectors;
    }
    return information;
}

void Append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

}  // namespace

Bytes DriveGeometryBytes(const Disk& disk) {
    return BytesOf(Geometry(disk));
}

Bytes DriveGeometryExBytes(const Disk& disk) {
    FullGeometry full{};
    full.geometry = Geometry(disk);
    full.disk_size.QuadPart = static_cast<LONGLONG>(disk.size);
    if (!disk.blank) {
        full.partition.SizeOfPartitionInfo = sizeof(full.partition);
        StoreNumber(full.partition.PartitionStyle, disk.style);
    }
    if (disk.style == PARTITION_STYLE_GPT) {
        full.partition.Gpt.DiskId = disk.disk_id;
    } else if (disk.style == PARTITION_STYLE_MBR) {
        full.partition.Mbr.Signature = disk.signature;
        full.partition.Mbr.CheckSum = disk.checksum;
    }
    full.detection.SizeOfDetectInfo = sizeof(full.detection);
    StoreNumber(full.detection.DetectionType, disk.detection_type);
    full.detection.Int13 = disk.int13;
    full.detection.ExInt13 = disk.ex_int13;
    return BytesOf(full);
}

Bytes DriveLayoutBytes(const Disk& disk) {
    DRIVE_LAYOUT_INFORMATION header{};
    header.PartitionCount = static_cast<DWORD>(disk.partitions.size());
    header.Signature = disk.signature;
    Bytes bytes = BytesOf(header);
    bytes.resize(offsetof(DRIVE_LAYOUT_INFORMATION, PartitionEntry));
    for (const Partition& partition : disk.partitions) {
        Append(bytes, PartitionBytes(partition));
    }
    return bytes;
}

Bytes DriveLayoutExBytes(const Disk& disk) {
    DRIVE_LAYOUT_INFORMATION_EX header{};
    header.PartitionStyle = disk.style;
    header.PartitionCount = static_cast<DWORD>(disk.partitions.size());
    if (disk.style == PARTITION_STYLE_GPT) {
        header.Gpt.DiskId = disk.disk_id;
        header.Gpt.StartingUsableOffset.QuadPart = static_cast<LONGLONG>(disk.starting_usable_offset);
        header.Gpt.UsableLength.QuadPart = static_cast<LONGLONG>(disk.usable_length);
        header.Gpt.MaxPartitionCount = disk.max_partition_count;
    } else if (disk.style == PARTITION_STYLE_MBR) {
        header.Mbr.Signature = disk.signature;
    }
    Bytes bytes = BytesOf(header);
    bytes.resize(offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry));
    if (disk.style == PARTITION_STYLE_MBR) {
        std::memcpy(bytes.data() + kMbrLayoutChecksum, &disk.layout_checksum, sizeof(disk.layout_checksum));
    }
    bytes.reserve(bytes.size() + disk.partitions.size() * sizeof(PARTITION_INFORMATION_EX));
    for (const Partition& partition : disk.partitions) {
        Append(bytes, PartitionExBytes(partition));
    }
    return bytes;
}

Bytes PartitionBytes(const Partition& partition) {
    return BytesOf(Information(partition));
}

Bytes PartitionExBytes(const Partition& partition) {
    Bytes bytes = BytesOf(InformationEx(partition));
    bytes[kServicePartition] = partition.service ? 1 : 0;
    if (partition.style == PARTITION_STYLE_MBR) {
        std::memcpy(bytes.data() + kMbrPartitionId, &partition.id, sizeof(partition.id));
    }
    return bytes;
}

Partition WholeDisk(const Disk& disk) {
    Partition whole;
    whole.style = disk.style;
    whole.length = disk.size;
    return whole;
}

Partition PartitionFrom(const PARTITION_INFORMATION_EX& information) {
    Partition partition;
    partition.style = NumberIn(information.PartitionStyle);
    partition.offset = static_cast<std::uint64_t>(information.StartingOffset.QuadPart);
    partition.length = static_cast<std::uint64_t>(information.PartitionLength.QuadPart);
    partition.number = information.PartitionNumber;
    if (partition.style == PARTITION_STYLE_GPT) {
        partition.gpt_type = information.Gpt.PartitionType;
        partition.id = information.Gpt.PartitionId;
        partition.gpt_attributes = information.Gpt.Attributes;
        const WCHAR* end = std::find(std::begin(information.Gpt.Name), std::end(information.Gpt.Name), L'\0');
        partition.gpt_name.assign(std::begin(information.Gpt.Name), end);
    } else {
        partition.mbr_type = information.Mbr.PartitionType;
        partition.active = information.Mbr.BootIndicator != 0;
        partition.recognized = information.Mbr.RecognizedPartition != 0;
        partition.hidden_sectors = information.Mbr.HiddenSectors;
    }
    return partition;
}

}  // namespace machine

#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace machine::rows {
namespace {

struct FileSystemFacts {
    const wchar_t* name;
    std::uint32_t flags;
    std::uint32_t max_component_length;
    std::uint64_t cluster_bytes;  // 0: depends on the size of the volume
};

constexpr FileSystemFacts kFileSystems[] = {
    {L"NTFS", 0x03E72EFF, 255, 4096}, {L"ReFS", 0x03A72CC7, 255, 4096},   {L"FAT32", 0x00020206, 255, 0},
    {L"FAT", 0x00020206, 255, 0},     {L"exFAT", 0x00020206, 255, 32768}, {L"CDFS", 0x00080005, 110, 2048},
    {L"UDF", 0x00080006, 254, 2048},
};

const FileSystemFacts* FactsOf(const std::wstring& file_system) {
    const auto* facts = std::find_if(std::begin(kFileSystems), std::end(kFileSystems),
                                     [&](const FileSystemFacts& known) { return file_system == known.name; });
    return facts == std::end(kFileSystems) ? nullptr : facts;
}

// The cluster size, in bytes, that the system chooses for a FAT volume of this size.
std::uint64_t FatCluster(std::uint64_t length) {
    constexpr std::uint64_t kMiB = 1ULL << 20;
    constexpr std::uint64_t kSteps[][2] = {{64 * kMiB, 512},    {128 * kMiB, 1024},   {256 * kMiB, 2048},
                                           {8192 * kMiB, 4096}, {16384 * kMiB, 8192}, {32768 * kMiB, 16384}};
    for (const auto& [limit, cluster] : kSteps) {
        if (length <= limit) {
            return cluster;
        }
    }
    return 32768;
}

const Disk* DiskUnder(const Volume& volume, const std::vector<Disk>& disks) {
    if (!volume.extents || volume.extents->empty()) {
        return nullptr;
    }
    const auto disk = std::find_if(disks.begin(), disks.end(), [&](const Disk& candidate) {
        return candidate.index == volume.extents->front().disk;
    });
    return disk == disks.end() ? nullptr : &*disk;
}

std::optional<Partition> PartitionUnder(const Volume& volume, const Disk* disk) {
    if (disk == nullptr || volume.extents->size() != 1) {
        return std::nullopt;
    }
    const auto partition =
        std::find_if(disk->partitions.begin(), disk->partitions.end(), [&](const Partition& candidate) {
            return candidate.number != 0 && candidate.offset == volume.extents->front().offset &&
                   candidate.length == volume.extents->front().length;
        });
    return partition == disk->partitions.end() ? std::nullopt : std::optional(*partition);
}

std::uint64_t Cluster(const Volume& volume) {
    return std::uint64_t{volume.sectors_per_cluster} * volume.bytes_per_sector;
}

// Defaults, each computed from the members above it.

std::wstring DefaultFileSystem(const Volume& volume, const Place&) {
    return !volume.has_media ? L"" : volume.drive_type == DRIVE_CDROM ? L"CDFS" : L"NTFS";
}

std::uint32_t DefaultSectorSize(const Volume& volume, const Place& place) {
    const Disk* disk = DiskUnder(volume, place.machine->disks);
    return disk != nullptr ? disk->bytes_per_sector : volume.drive_type == DRIVE_CDROM ? 2048 : 512;
}

std::uint64_t DefaultLength(const Volume& volume, const Place&) {
    std::uint64_t length = 0;
    for (const Extent& extent : volume.extents.value_or(std::vector<Extent>{})) {
        length += extent.length;
    }
    return length;
}

std::uint32_t DefaultSerial(const Volume& volume, const Place&) {
    return volume.file_system.empty() ? 0 : DerivedNumber("serial " + Narrow(volume.device));
}

std::uint32_t DefaultMaxComponentLength(const Volume& volume, const Place&) {
    const FileSystemFacts* facts = FactsOf(volume.file_system);
    return facts == nullptr ? 255 : facts->max_component_length;
}

std::uint32_t DefaultFlags(const Volume& volume, const Place&) {
    const FileSystemFacts* facts = FactsOf(volume.file_system);
    return facts == nullptr ? 0 : facts->flags;
}

std::uint32_t DefaultSectorsPerCluster(const Volume& volume, const Place&) {
    const FileSystemFacts* facts = FactsOf(volume.file_system);
    std::uint64_t cluster = facts == nullptr ? 4096 : facts->cluster_bytes;
    cluster = cluster == 0 ? FatCluster(volume.length) : cluster;
    return volume.file_system.empty()
               ? 0
               : std::max<std::uint32_t>(1, static_cast<std::uint32_t>(cluster / volume.bytes_per_sector));
}

std::uint64_t DefaultTotalClusters(const Volume& volume, const Place&) {
    // NTFS reserves the last sector of its partition for the backup boot sector.
    const std::uint64_t kept =
        volume.file_system == L"NTFS" && volume.length != 0 ? volume.bytes_per_sector : 0;
    return Cluster(volume) == 0 ? 0 : (volume.length - kept) / Cluster(volume);
}

std::uint64_t DefaultFree(const Volume& volume, const Place&) {
    return volume.drive_type == DRIVE_CDROM ? 0 : volume.total_clusters / 5 * 2 * Cluster(volume);
}

// The free bytes of whole clusters, by which the free clusters are described too.
Row<Volume> FreeRow() {
    return {"free",
            ByteCount(),
            "two fifths of the clusters; 0 for an optical drive",
            "rounded down to clusters",
            [](const Volume& volume, const Place& place) {
                const std::uint64_t free = volume.free_clusters * Cluster(volume);
                return free == DefaultFree(volume, place) ? std::nullopt : std::optional(free);
            },
            [](Volume& volume, std::uint64_t value, const JsonCursor&, Place&) { volume.free_bytes = value; },
            [](Volume& volume, const Place& place) { volume.free_bytes = DefaultFree(volume, place); }};
}

Row<Volume> FreeClustersRow() {
    return {
        "freeClusters",
        LongNumber(),
        "computed from `free`",
        "",
        [](const Volume& volume, const Place&) {
            const bool said = Cluster(volume) != 0 || volume.free_clusters == 0;
            return said ? std::nullopt : std::optional(volume.free_clusters);
        },
        [](Volume& volume, std::uint64_t value, const JsonCursor&, Place&) { volume.free_clusters = value; },
        [](Volume& volume, const Place&) {
            volume.free_clusters = Cluster(volume) == 0 ? 0 : volume.free_bytes / Cluster(volume);
        }};
}

const char* SectorSizeFault(const std::uint32_t& size) {
    return size == 0 ? "must not be 0" : nullptr;
}

std::optional<Partition> UsualPartition(const Volume& volume, const Place& place) {
    return PartitionUnder(volume, DiskUnder(volume, place.machine->disks));
}

Row<Volume> PartitionNumberRow() {
    return {"partitionNumber",
            Number(),
            "that of the partition that is the only extent",
            "what the partition controls return",
            [](const Volume& volume, const Place& place) {
                const auto usual = UsualPartition(volume, place);
                const bool other = volume.partition && (!usual || usual->number != volume.partition->number);
                return other ? std::optional(volume.partition->number) : std::nullopt;
            },
            [](Volume& volume, std::uint32_t number, const JsonCursor&, Place& place) {
                Partition whole;
                whole.length = volume.length;
                volume.partition = UsualPartition(volume, place).value_or(whole);
                volume.partition->number = number;
            },
            [](Volume& volume, const Place& place) { volume.partition = UsualPartition(volume, place); }};
}

}  // namespace

Table<Volume> SpaceRows() {
    return {
        {"media", &Volume::has_media, Flag(), "false: no medium; size and file system cannot be read"},
        {"fileSystem", &Volume::file_system, Text(),
         Derived{"`NTFS`; `CDFS` for an optical drive; empty without a medium", DefaultFileSystem},
         "empty: not recognised (error 1005)"},
        {"bytesPerSector", &Volume::bytes_per_sector, Checked("number", Number(), SectorSizeFault),
         Derived{"that of the disk; without a disk, 2048 for an optical drive and 512 otherwise",
                 DefaultSectorSize},
         ""},
        {"length", &Volume::length, ByteCount(), Derived{"the sum of the extents", DefaultLength}, ""},
        {"label", &Volume::label, Text(), ""},
        {"serial", &Volume::serial, Number(), Derived{"derived from the device", DefaultSerial}, ""},
        {"maxComponentLength", &Volume::max_component_length, Number(),
         Derived{"depends on the file system", DefaultMaxComponentLength}, ""},
        {"flags", &Volume::file_system_flags, Number(), Derived{"depends on the file system", DefaultFlags},
         "file system flags"},
        {"sectorsPerCluster", &Volume::sectors_per_cluster, Number(),
         Derived{"what Windows chooses for the file system and size", DefaultSectorsPerCluster}, ""},
        {"totalClusters", &Volume::total_clusters, LongNumber(),
         Derived{"as many as fit the length", DefaultTotalClusters}, ""},
        FreeRow(),
        FreeClustersRow(),
        {"totalBytes", &Volume::total_bytes, ByteCount(),
         Derived{"computed from the clusters",
                 [](const Volume& volume, const Place&) { return volume.total_clusters * Cluster(volume); }},
         "as GetDiskFreeSpaceExW returns it"},
        {"freeBytes", &Volume::free_bytes, ByteCount(),
         Derived{"computed from the clusters",
                 [](const Volume& volume, const Place&) { return volume.free_clusters * Cluster(volume); }},
         "likewise"},
        {"freeBytesToCaller", &Volume::free_bytes_to_caller, ByteCount(),
         Derived{"`freeBytes`", [](const Volume& volume, const Place&) { return volume.free_bytes; }},
         "likewise"},
        PartitionNumberRow(),
    };
}

}  // namespace machine::rows

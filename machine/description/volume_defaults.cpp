#include "machine/description/parsing.h"
#include "machine/description/text.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace machine::parsing {
namespace {

constexpr NamedNumber kShortExtents[] = {{"first", static_cast<std::uint32_t>(ShortExtents::kFirst)},
                                         {"fitting", static_cast<std::uint32_t>(ShortExtents::kFitting)},
                                         {"none", static_cast<std::uint32_t>(ShortExtents::kNone)}};

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

std::uint64_t TotalLength(const Volume& volume) {
    std::uint64_t length = 0;
    for (const Extent& extent : volume.extents.value_or(std::vector<Extent>{})) {
        length += extent.length;
    }
    return length;
}

std::wstring FileSystem(JsonObject& object, const Volume& volume) {
    if (!volume.has_media) {
        return object.Text("fileSystem", L"");
    }
    return object.Text("fileSystem", volume.drive_type == DRIVE_CDROM ? L"CDFS" : L"NTFS");
}

void FileSystemFields(JsonObject& object, Volume& volume) {
    const FileSystemFacts* facts = FactsOf(volume.file_system);
    const bool recognized = !volume.file_system.empty();
    volume.label = object.Text("label", L"");
    volume.serial =
        object.Number32("serial", recognized ? DerivedNumber("serial " + Narrow(volume.device)) : 0);
    volume.max_component_length =
        object.Number32("maxComponentLength", facts == nullptr ? 255 : facts->max_component_length);
    volume.file_system_flags = object.Number32("flags", facts == nullptr ? 0 : facts->flags);
}

void SpaceFields(JsonObject& object, Volume& volume) {
    const FileSystemFacts* facts = FactsOf(volume.file_system);
    const bool recognized = !volume.file_system.empty();
    std::uint64_t cluster = facts == nullptr ? 4096 : facts->cluster_bytes;
    cluster = cluster == 0 ? FatCluster(volume.length) : cluster;
    volume.sectors_per_cluster = object.Number32(
        "sectorsPerCluster",
        recognized ? std::max<std::uint32_t>(1, static_cast<std::uint32_t>(cluster / volume.bytes_per_sector))
                   : 0);
    const std::uint64_t block =
        static_cast<std::uint64_t>(volume.sectors_per_cluster) * volume.bytes_per_sector;

    // NTFS reserves the last sector of its partition for the backup boot sector.
    const std::uint64_t kept =
        volume.file_system == L"NTFS" && volume.length != 0 ? volume.bytes_per_sector : 0;
    volume.total_clusters = object.Number("totalClusters", block == 0 ? 0 : (volume.length - kept) / block);
    const bool read_only = volume.drive_type == DRIVE_CDROM;
    const std::uint64_t assumed = read_only ? 0 : volume.total_clusters / 5 * 2;
    const std::uint64_t free = object.ByteCount("free", assumed * block);
    volume.free_clusters = object.Number("freeClusters", block == 0 ? 0 : free / block);
    volume.total_bytes = object.ByteCount("totalBytes", volume.total_clusters * block);
    volume.free_bytes = object.ByteCount("freeBytes", volume.free_clusters * block);
    volume.free_bytes_to_caller = object.ByteCount("freeBytesToCaller", volume.free_bytes);
    if (volume.free_clusters > volume.total_clusters) {
        object.Refuse("has more free than total clusters");
    }
}

}  // namespace

void CompleteVolume(JsonObject& object, Volume& volume, const std::vector<Disk>& disks) {
    const Disk* disk = DiskUnder(volume, disks);
    volume.has_media = object.Bool("media", true);
    volume.file_system = FileSystem(object, volume);
    const std::uint32_t sector = disk != nullptr                    ? disk->bytes_per_sector
                                 : volume.drive_type == DRIVE_CDROM ? 2048
                                                                    : 512;
    volume.bytes_per_sector = object.Number32("bytesPerSector", sector);
    if (volume.bytes_per_sector == 0) {
        object.Require("bytesPerSector").Refuse("must not be 0");
    }
    volume.length = object.ByteCount("length", TotalLength(volume));
    FileSystemFields(object, volume);
    SpaceFields(object, volume);
    volume.partition = PartitionUnder(volume, disk);
    if (const auto number = object.Find("partitionNumber")) {
        if (!volume.partition) {
            volume.partition = Partition{};
            volume.partition->length = volume.length;
        }
        volume.partition->number = number->Number32();
    }
    if (const auto error = object.Find("extentsShortError")) {
        volume.extents_short_error = error->Number32();
    }
    if (const auto answer = object.Find("extentsShortAnswer")) {
        volume.short_extents = static_cast<ShortExtents>(NamedOrNumber(*answer, kShortExtents));
    }
}

}  // namespace machine::parsing

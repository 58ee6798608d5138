#include "machine/description/disk_image.h"
#include "machine/description/partition_table.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace machine {
namespace {

constexpr char kSignature[] = {'E', 'F', 'I', ' ', 'P', 'A', 'R', 'T'};
constexpr std::uint32_t kRevision = 0x00010000;
constexpr std::uint32_t kHeaderSize = 92;
constexpr std::uint32_t kGptEntrySize = 128;
constexpr std::uint32_t kMaxEntries = 1 << 16;  // a header with more entries counts as damaged
constexpr std::size_t kNameLength = 36;

// Offsets in the header.
constexpr std::size_t kRevisionAt = 8;
constexpr std::size_t kHeaderSizeAt = 12;
constexpr std::size_t kHeaderCrcAt = 16;
constexpr std::size_t kOwnSectorAt = 24;
constexpr std::size_t kOtherSectorAt = 32;
constexpr std::size_t kFirstUsableAt = 40;
constexpr std::size_t kLastUsableAt = 48;
constexpr std::size_t kDiskIdAt = 56;
constexpr std::size_t kEntriesSectorAt = 72;
constexpr std::size_t kEntryCountAt = 80;
constexpr std::size_t kEntrySizeAt = 84;
constexpr std::size_t kEntriesCrcAt = 88;

struct Table {
    Bytes header;
    Bytes entries;
};

bool IsHeaderValid(Bytes header, std::uint64_t own_sector) {
    if (std::memcmp(header.data(), kSignature, sizeof(kSignature)) != 0 ||
        Get32(header, kRevisionAt) != kRevision) {
        return false;
    }
    const std::uint32_t size = Get32(header, kHeaderSizeAt);
    if (size < kHeaderSize || size > header.size()) {
        return false;
    }
    const std::uint32_t crc = Get32(header, kHeaderCrcAt);
    Put32(header, kHeaderCrcAt, 0);
    return crc == Crc32(header.data(), size) && Get64(header, kOwnSectorAt) == own_sector &&
           Get32(header, kEntrySizeAt) == kGptEntrySize && Get32(header, kEntryCountAt) <= kMaxEntries &&
           Get64(header, kFirstUsableAt) <= Get64(header, kLastUsableAt);
}

std::optional<Table> ReadTable(const Disk& disk, ImageFile& image, std::uint64_t sector) {
    const std::uint64_t sectors = disk.size / disk.bytes_per_sector;
    if (sector >= sectors) {
        return std::nullopt;
    }
    Table table;
    table.header = image.Read(sector * disk.bytes_per_sector, disk.bytes_per_sector);
    if (!IsHeaderValid(table.header, sector)) {
        return std::nullopt;
    }
    const std::uint64_t first = Get64(table.header, kEntriesSectorAt);
    const std::size_t length = static_cast<std::size_t>(Get32(table.header, kEntryCountAt)) * kGptEntrySize;
    if (first >= sectors || length > (sectors - first) * disk.bytes_per_sector) {
        return std::nullopt;
    }
    table.entries = image.Read(first * disk.bytes_per_sector, length);
    if (Crc32(table.entries.data(), length) != Get32(table.header, kEntriesCrcAt)) {
        return std::nullopt;
    }
    return table;
}

Partition Entry(const Bytes& entries, std::size_t at, std::uint32_t bytes_per_sector) {
    Partition partition;
    partition.style = PARTITION_STYLE_GPT;
    partition.gpt_type = GetGuid(entries, at);
    partition.id = GetGuid(entries, at + 16);
    const std::uint64_t first = Get64(entries, at + 32);
    const std::uint64_t last = Get64(entries, at + 40);
    partition.offset = first * bytes_per_sector;
    partition.length = last >= first ? (last - first + 1) * bytes_per_sector : 0;
    partition.gpt_attributes = Get64(entries, at + 48);
    for (std::size_t i = 0; i < kNameLength; ++i) {
        const auto c = static_cast<wchar_t>(Get16(entries, at + 56 + i * 2));
        if (c == 0) {
            break;
        }
        partition.gpt_name += c;
    }
    return partition;
}

Bytes EntriesOf(const Disk& disk) {
    Bytes entries(static_cast<std::size_t>(disk.max_partition_count) * kGptEntrySize);
    for (std::size_t i = 0; i < disk.partitions.size() && i < disk.max_partition_count; ++i) {
        const Partition& partition = disk.partitions[i];
        const std::size_t at = i * kGptEntrySize;
        const std::uint64_t first = partition.offset / disk.bytes_per_sector;
        PutGuid(entries, at, partition.gpt_type);
        PutGuid(entries, at + 16, partition.id);
        Put64(entries, at + 32, first);
        Put64(entries, at + 40, first + partition.length / disk.bytes_per_sector - 1);
        Put64(entries, at + 48, partition.gpt_attributes);
        for (std::size_t c = 0; c < std::min(partition.gpt_name.size(), kNameLength); ++c) {
            Put16(entries, at + 56 + c * 2, static_cast<std::uint16_t>(partition.gpt_name[c]));
        }
    }
    return entries;
}

struct Places {
    std::uint64_t own;
    std::uint64_t other;
    std::uint64_t entries;
};

Bytes HeaderOf(const Disk& disk, const Bytes& entries, const Places& places) {
    Bytes header(disk.bytes_per_sector);
    std::memcpy(header.data(), kSignature, sizeof(kSignature));
    const std::uint64_t first = disk.starting_usable_offset / disk.bytes_per_sector;
    Put32(header, kRevisionAt, kRevision);
    Put32(header, kHeaderSizeAt, kHeaderSize);
    Put64(header, kOwnSectorAt, places.own);
    Put64(header, kOtherSectorAt, places.other);
    Put64(header, kFirstUsableAt, first);
    Put64(header, kLastUsableAt, first + disk.usable_length / disk.bytes_per_sector - 1);
    PutGuid(header, kDiskIdAt, disk.disk_id);
    Put64(header, kEntriesSectorAt, places.entries);
    Put32(header, kEntryCountAt, disk.max_partition_count);
    Put32(header, kEntrySizeAt, kGptEntrySize);
    Put32(header, kEntriesCrcAt, Crc32(entries.data(), entries.size()));
    Put32(header, kHeaderCrcAt, Crc32(header.data(), kHeaderSize));
    return header;
}

// Keeps the boot code in front of the table.
void WriteProtectiveRecord(const Disk& disk, ImageFile& image) {
    Bytes sector = image.Read(0, disk.bytes_per_sector);
    std::fill(sector.begin() + kDiskSignatureOffset, sector.begin() + kBootSignatureOffset, std::uint8_t{0});
    Partition protective;
    protective.mbr_type = kProtectiveType;
    PutBootEntry(sector, 0, protective, 1, disk.size / disk.bytes_per_sector - 1);
    Put16(sector, kBootSignatureOffset, kBootSignature);
    image.Write(0, sector);
}

}  // namespace

bool ReadGptTable(Disk& disk, ImageFile& image) {
    std::optional<Table> table = ReadTable(disk, image, 1);
    if (!table) {
        table = ReadTable(disk, image, disk.size / disk.bytes_per_sector - 1);
    }
    if (!table) {
        return false;
    }
    const std::uint64_t first = Get64(table->header, kFirstUsableAt);
    const std::uint64_t last = Get64(table->header, kLastUsableAt);
    disk.style = PARTITION_STYLE_GPT;
    disk.disk_id = GetGuid(table->header, kDiskIdAt);
    disk.starting_usable_offset = first * disk.bytes_per_sector;
    disk.usable_length = (last - first + 1) * disk.bytes_per_sector;
    disk.max_partition_count = Get32(table->header, kEntryCountAt);
    disk.partitions.clear();
    for (std::size_t at = 0; at < table->entries.size(); at += kGptEntrySize) {
        Partition partition = Entry(table->entries, at, disk.bytes_per_sector);
        if (!IsEqualGUID(partition.gpt_type, GUID{})) {
            partition.number = static_cast<std::uint32_t>(disk.partitions.size() + 1);
            disk.partitions.push_back(std::move(partition));
        }
    }
    return true;
}

void WriteGptTable(const Disk& disk, ImageFile& image) {
    Bytes entries = EntriesOf(disk);
    const std::uint64_t table_sectors = (entries.size() + disk.bytes_per_sector - 1) / disk.bytes_per_sector;
    const std::uint64_t last = disk.size / disk.bytes_per_sector - 1;
    const Bytes primary = HeaderOf(disk, entries, {1, last, 2});
    const Bytes backup = HeaderOf(disk, entries, {last, 1, last - table_sectors});
    entries.resize(static_cast<std::size_t>(table_sectors) * disk.bytes_per_sector);

    WriteProtectiveRecord(disk, image);
    image.Write(2ULL * disk.bytes_per_sector, entries);
    image.Write(disk.bytes_per_sector, primary);
    image.Write((last - table_sectors) * disk.bytes_per_sector, entries);
    image.Write(last * disk.bytes_per_sector, backup);
}

void WipeGptHeaders(const Disk& disk, ImageFile& image) {
    const std::uint64_t last = disk.size / disk.bytes_per_sector - 1;
    for (const std::uint64_t sector : {std::uint64_t{1}, last}) {
        if (sector == 0 || sector > last) {
            continue;
        }
        const Bytes header = image.Read(sector * disk.bytes_per_sector, disk.bytes_per_sector);
        if (std::memcmp(header.data(), kSignature, sizeof(kSignature)) == 0) {
            image.Write(sector * disk.bytes_per_sector, Bytes(disk.bytes_per_sector));
        }
    }
}

}  // namespace machine

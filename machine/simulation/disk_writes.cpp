#include "machine/description/disk_image.h"
#include "machine/description/partition_table.h"
#include "machine/simulation/device_controls.h"
#include "machine/simulation/disk_structures.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <utility>

namespace machine {
namespace {

constexpr std::size_t kHeaderSize = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
constexpr std::uint32_t kLeastGptEntries = 128;

// Writes the image, if any, then replaces the disk. On a write error the disk stays unchanged.
Answer Commit(Disk& disk, Disk changed) {
    try {
        WriteDiskImage(changed);
    } catch (const std::runtime_error&) {
        return Answer::Failure(ERROR_WRITE_FAULT);
    }
    disk = std::move(changed);
    return {};
}

std::vector<Partition> EntriesIn(const ControlRequest& request, std::size_t count) {
    std::vector<Partition> entries;
    for (std::size_t i = 0; i < count; ++i) {
        PARTITION_INFORMATION_EX information{};
        std::memcpy(&information, request.input + kHeaderSize + i * sizeof(information), sizeof(information));
        entries.push_back(PartitionFrom(information));
        entries.back().rewrite = information.RewritePartition != 0;
    }
    return entries;
}

bool IsUnused(const Partition& entry) {
    return entry.style == PARTITION_STYLE_GPT ? IsEqualGUID(entry.gpt_type, GUID{}) != 0
                                              : entry.mbr_type == 0;
}

bool LieInside(const std::vector<Partition>& entries, std::uint64_t start, std::uint64_t end) {
    return std::all_of(entries.begin(), entries.end(), [&](const Partition& entry) {
        return IsUnused(entry) || (entry.length != 0 && entry.offset >= start && entry.offset < end &&
                                   entry.length <= end - entry.offset);
    });
}

bool Overlap(std::vector<Partition> entries) {
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [](const Partition& entry) {
                                     return IsUnused(entry) || (entry.style == PARTITION_STYLE_MBR &&
                                                                IsContainerType(entry.mbr_type));
                                 }),
                  entries.end());
    std::sort(entries.begin(), entries.end(),
              [](const Partition& left, const Partition& right) { return left.offset < right.offset; });
    return std::adjacent_find(entries.begin(), entries.end(),
                              [](const Partition& left, const Partition& right) {
                                  return left.offset + left.length > right.offset;
                              }) != entries.end();
}

Answer SetMbr(Disk& disk, const DRIVE_LAYOUT_INFORMATION_EX& header, std::vector<Partition> entries) {
    if (entries.size() % kPrimarySlots != 0 || !LieInside(entries, disk.bytes_per_sector, disk.size) ||
        Overlap(entries)) {
        return Answer::Failure(ERROR_INVALID_PARAMETER);
    }
    Disk changed = disk;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        // An entry without the rewrite flag leaves its slot unchanged.
        if (!entries[i].rewrite && i < disk.partitions.size()) {
            entries[i] = disk.partitions[i];
        }
        entries[i].style = PARTITION_STYLE_MBR;
        entries[i].rewrite = false;
        if (IsUnused(entries[i])) {
            entries[i] = Partition{};
        }
    }
    changed.signature = header.Mbr.Signature;
    changed.partitions = std::move(entries);
    NumberMbrEntries(changed);
    return Commit(disk, std::move(changed));
}

Answer SetGpt(Disk& disk, const DRIVE_LAYOUT_INFORMATION_EX& header, const std::vector<Partition>& entries) {
    const std::uint64_t start = disk.starting_usable_offset;
    const bool all_gpt = std::all_of(entries.begin(), entries.end(), [](const Partition& entry) {
        return entry.style == PARTITION_STYLE_GPT;
    });
    if (!all_gpt || entries.size() > disk.max_partition_count ||
        !LieInside(entries, start, start + disk.usable_length) || Overlap(entries)) {
        return Answer::Failure(ERROR_INVALID_PARAMETER);
    }
    Disk changed = disk;
    changed.disk_id = header.Gpt.DiskId;
    changed.partitions.clear();
    for (Partition entry : entries) {
        if (!IsUnused(entry)) {
            entry.rewrite = false;
            entry.number = static_cast<std::uint32_t>(changed.partitions.size() + 1);
            changed.partitions.push_back(std::move(entry));
        }
    }
    return Commit(disk, std::move(changed));
}

void MakeEmpty(Disk& disk, std::uint32_t style) {
    disk.style = style;
    disk.signature = 0;
    disk.checksum = 0;
    disk.disk_id = GUID{};
    disk.partitions.clear();
    disk.blank = false;
}

}  // namespace

Answer SetDriveLayout(Disk& disk, const ControlRequest& request) {
    if (request.input_size < kHeaderSize) {
        return Answer::Failure(ERROR_BAD_LENGTH);
    }
    DRIVE_LAYOUT_INFORMATION_EX header{};
    std::memcpy(&header, request.input, kHeaderSize);
    if (header.PartitionCount > (request.input_size - kHeaderSize) / sizeof(PARTITION_INFORMATION_EX)) {
        return Answer::Failure(ERROR_BAD_LENGTH);
    }
    if (header.PartitionStyle != disk.style) {
        return Answer::Failure(ERROR_INVALID_PARAMETER);
    }
    const std::vector<Partition> entries = EntriesIn(request, header.PartitionCount);
    switch (disk.style) {
        case PARTITION_STYLE_MBR:
            return SetMbr(disk, header, entries);
        case PARTITION_STYLE_GPT:
            return SetGpt(disk, header, entries);
        default:
            return Answer::Failure(ERROR_INVALID_PARAMETER);
    }
}

Answer CreateDisk(Disk& disk, const ControlRequest& request) {
    CREATE_DISK create{};
    if (request.input_size < sizeof(create)) {
        return Answer::Failure(ERROR_BAD_LENGTH);
    }
    std::memcpy(&create, request.input, sizeof(create));
    const std::uint32_t style = NumberIn(create.PartitionStyle);
    Disk changed = disk;
    MakeEmpty(changed, style);
    switch (style) {
        case PARTITION_STYLE_MBR:
            changed.signature = create.Mbr.Signature;
            changed.partitions.resize(kPrimarySlots);
            break;
        case PARTITION_STYLE_GPT:
            changed.disk_id = create.Gpt.DiskId;
            changed.max_partition_count =
                std::max<std::uint32_t>(create.Gpt.MaxPartitionCount, kLeastGptEntries);
            SetUsableRange(changed);
            if (changed.usable_length == 0) {
                return Answer::Failure(ERROR_INVALID_PARAMETER);
            }
            break;
        case PARTITION_STYLE_RAW:
            break;
        default:
            return Answer::Failure(ERROR_INVALID_PARAMETER);
    }
    return Commit(disk, std::move(changed));
}

Answer DeleteDriveLayout(Disk& disk) {
    Disk changed = disk;
    MakeEmpty(changed, PARTITION_STYLE_RAW);
    return Commit(disk, std::move(changed));
}

Answer UpdateProperties(Disk& disk) {
    if (disk.image && disk.image->writable) {
        try {
            ReadDiskImage(disk);
        } catch (const std::runtime_error&) {
            return Answer::Failure(ERROR_READ_FAULT);
        }
    }
    return {};
}

}  // namespace machine

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// One disk of a captured document. Offsets and lengths are bytes. A member without a value is not in the
// document: no member ever holds a 0 in the place of something unknown. Texts are UTF-8.
namespace documents {

struct Range {
    std::uint64_t start = 0;
    std::uint64_t length = 0;

    bool operator==(const Range&) const = default;
};

// kRaw: no partition table, or none that the library knows (an MBR disk with the signature 0 too). Such a
// disk has neither partitions nor gaps here.
enum class Style { kMbr, kGpt, kRaw };

enum class PartitionKind { kPrimary, kLogical };  // kLogical: in an extended partition

struct Partition {
    Range place;
    PartitionKind kind = PartitionKind::kPrimary;
    std::optional<std::uint8_t> mbr_type;
    std::optional<std::string> gpt_type;  // "{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}", upper case
    std::optional<std::string> id;        // the GUID of a GPT partition, written in the same way
    std::optional<bool> active;           // MBR only
    std::optional<std::uint32_t> slot;    // format 3: of a primary partition of an MBR disk, from 1

    std::optional<std::uint32_t> row_number;     // formats 1 and 2: the position by offset, from 1
    std::optional<std::uint32_t> system_number;  // the number that Windows gives it: format 3; format 2
                                                 // from the extent of a volume that begins where it does
    // Formats 1 and 2: what the partition's row says of the volume on it.
    std::optional<std::string> drive;  // "C:\" in both formats
    std::optional<std::string> file_system;
    std::optional<std::string> volume;  // format 1: the volume GUID path
};

struct Gap {
    Range place;
    bool in_extended = false;
};

// The extended partition's entry in the MBR. Format 3.
struct ExtendedEntry {
    std::uint32_t slot = 0;  // from 1
    std::uint8_t type = 0;   // 0x05 or 0x0F
};

// Format 3.
struct Geometry {
    std::int64_t cylinders = 0;
    std::uint32_t tracks_per_cylinder = 0;
    std::uint32_t sectors_per_track = 0;
    std::int32_t media_type = 0;  // MEDIA_TYPE of Windows: 12 fixed, 11 removable
};

struct Disk {
    std::uint32_t number = 0;           // the N of \\.\PhysicalDriveN
    std::optional<std::uint64_t> size;  // none: the disk could not be read; format 3: or cannot be backed up
    std::optional<std::uint32_t> sector_size;
    std::optional<Style> style;
    std::optional<std::string> id;              // the GUID of a GPT disk, as Partition::gpt_type
    std::optional<std::uint32_t> signature;     // of an MBR disk; formats 1 and 2 say it in the volumes only
    std::optional<std::string> interface_type;  // "IDE", "SCSI" ... as WMI names it
    std::optional<bool> dynamic;
    std::optional<Geometry> geometry;

    // In the order of the document: those of an MBR disk by slot, then the logical ones; those of a GPT disk
    // by offset. None: the document leaves the table out (a GPT disk in format 3, a disk of unknown
    // size). Extended partitions and unused entries are not in it.
    std::optional<std::vector<Partition>> partitions;
    // By offset. None: the format does not say them (format 3), or no table.
    std::optional<std::vector<Gap>> gaps;
    // The extended partition: formats 1 and 2 say its place by the rows in it.
    std::optional<Range> extended;
    std::optional<ExtendedEntry> extended_entry;
    // With an extended partition: the number of primary ones in the slots before its own.
    std::size_t primaries_before_extended = 0;
};

}  // namespace documents

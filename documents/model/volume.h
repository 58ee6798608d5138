#pragma once

#include "documents/model/disk.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// One volume of a captured document; the rules of disk.h apply.
namespace documents {

struct Extent {
    std::uint32_t disk = 0;  // the disk's number; the document may have no such disk
    Range place;
    // Formats 1 and 2.
    std::optional<std::uint32_t> partition_number;  // format 2: the system's; format 1: made up
    std::optional<std::uint32_t> signature;         // of the MBR disk
    std::optional<std::string> disk_id;             // of the GPT disk
};

struct Volume {
    std::optional<std::string> path;    // the volume GUID path, "\\?\Volume{...}\"; none: it has none
    std::optional<std::string> device;  // "\Device\HarddiskVolume3"
    // The alphabetically first drive root, "C:\". Empty: it has no letter. None: unknown.
    std::optional<std::string> letter;
    // Drive roots and folders. None: not in the document (formats 1 and 2), or could not be listed.
    std::optional<std::vector<std::string>> mount_points;
    std::optional<std::uint64_t> size;  // of the volume, bytes

    // None: the query failed, or the volume has no file system that Windows knows.
    std::optional<std::string> file_system;
    std::optional<std::string> label;  // empty: no label
    std::optional<std::uint32_t> serial;
    std::optional<std::uint32_t> flags;       // of the file system
    std::optional<std::uint32_t> block_size;  // bytes per cluster
    std::optional<std::uint64_t> used;        // bytes: total minus free
    std::optional<std::uint64_t> free;        // bytes; format 3

    // Windows' own terms are the other way round.
    std::optional<bool> system;  // it holds Windows
    std::optional<bool> boot;    // the machine starts from it
    std::optional<bool> dynamic;
    std::optional<bool> active;  // it lies on the active partition; format 3

    // In the order of the document. None: unknown. Empty: the document says that there are none.
    std::optional<std::vector<Extent>> extents;

    // Formats 1 and 2: m_GUID, by which the document's tables refer to the volume. In format 2 it is made
    // for each capture, so it identifies nothing outside of the document.
    std::optional<std::string> reference;
    // Formats 1 and 2: the place that the volume's row repeats from its first extent.
    std::optional<Extent> first_extent;
};

}  // namespace documents

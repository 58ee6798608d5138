#pragma once

#include "documents/model/lookup.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace documents {

// What takes a range of a disk. The map and the table of a disk show the same parts.
enum class PartKind {
    kPartition,   // a partition, or the piece of a partition that a volume takes
    kVolume,      // a volume on a disk whose table is not in the document
    kGap,         // no partition
    kUndescribed  // the document does not say what is there
};

struct DiskPart {
    PartKind kind = PartKind::kPartition;
    Range place;
    bool in_extended = false;
    const Partition* partition = nullptr;
    std::uint32_t number = 0;  // of the partition on its disk, by offset, from 1
    // The volume on it; none: no volume.
    std::optional<PlacedExtent> extent;
    // Further volumes in the same place, such as shadow copies.
    std::vector<PlacedExtent> others;
};

// The parts of a disk by offset. A partition is one part; the partition of a dynamic disk is one for each
// place of an extent in it, and one for each piece that no volume takes. Up to 1 MiB that nothing takes, such
// as the space of the partition table, is left out. Empty if the document says nothing about the disk's
// content.
std::vector<DiskPart> PartsOf(const Disk& disk, const ExtentsByDisk& extents);

}  // namespace documents

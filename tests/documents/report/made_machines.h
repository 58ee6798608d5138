#pragma once

#include "documents/model/machine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

// Parts of machines for the tests of the report.
namespace documents {

inline constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
inline constexpr std::uint64_t kGiB = std::uint64_t{1} << 30U;

inline Partition MbrPartition(Range place, std::uint8_t type) {
    Partition partition;
    partition.place = place;
    partition.mbr_type = type;
    return partition;
}

inline Partition GptPartition(Range place, std::string type) {
    Partition partition;
    partition.place = place;
    partition.gpt_type = std::move(type);
    return partition;
}

// A disk with a table and no partitions.
inline Disk MadeDisk(std::uint32_t number, std::uint64_t size, Style style) {
    Disk disk;
    disk.number = number;
    disk.size = size;
    disk.style = style;
    disk.partitions.emplace();
    return disk;
}

inline Extent MadeExtent(std::uint32_t disk, Range place) {
    Extent extent;
    extent.disk = disk;
    extent.place = place;
    return extent;
}

inline Volume MadeVolume(std::string letter, std::vector<Extent> extents) {
    Volume volume;
    volume.letter = std::move(letter);
    volume.extents = std::move(extents);
    return volume;
}

}  // namespace documents

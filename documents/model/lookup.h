#pragma once

#include "documents/model/machine.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

// Questions that several commands ask of a machine.
namespace documents {

// None if the document has no such disk (a placeholder is none).
const Disk* FindDisk(const Machine& machine, std::uint32_t number);

// The partitions of the disk by offset; empty if the document leaves its table out.
std::vector<const Partition*> PartitionsByOffset(const Disk& disk);

// The partition that begins at the offset; none if there is none.
const Partition* PartitionAt(const Disk& disk, std::uint64_t start);

// The volume's extent on a disk.
struct PlacedExtent {
    const Volume* volume = nullptr;
    const Extent* extent = nullptr;
    std::size_t index = 0;  // of the extent among those of its volume
};

// All extents by disk and offset. Refers to the machine, which must outlive it.
class ExtentsByDisk {
public:
    explicit ExtentsByDisk(const Machine& machine);

    // By offset; empty if no volume lies on that disk.
    const std::vector<PlacedExtent>& On(std::uint32_t disk) const;

    // Those on the disk that begin inside the range, by offset.
    std::vector<PlacedExtent> Inside(std::uint32_t disk, const Range& range) const;

private:
    std::map<std::uint32_t, std::vector<PlacedExtent>> disks_;
};

// The end of a range, or the largest number if it is over 64 bits.
std::uint64_t EndOf(const Range& range);
bool Contains(const Range& outer, const Range& inner);
// Whether they share a byte.
bool Overlap(const Range& one, const Range& other);

// Whether a partition belongs to a dynamic disk, by its type.
bool IsDynamicType(const Partition& partition);

}  // namespace documents

#pragma once

#include "documents/report/disk_parts.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace documents {

// The parts of all disks of a machine, and which part an extent is in. Refers to the machine, which must
// outlive it.
class MachineParts {
public:
    explicit MachineParts(const Machine& machine);
    MachineParts(const MachineParts&) = delete;
    MachineParts& operator=(const MachineParts&) = delete;

    // By offset.
    const std::vector<DiskPart>& Of(const Disk& disk) const { return parts_.at(disk.number); }

    // "disk 0, partition 2": where an extent of the machine lies.
    std::string PlaceNameOf(const Extent& extent) const;

private:
    ExtentsByDisk extents_;
    std::unordered_map<std::uint32_t, std::vector<DiskPart>> parts_;
    std::unordered_map<const Extent*, std::uint32_t> partitions_;  // their numbers; 0: in no partition
};

}  // namespace documents

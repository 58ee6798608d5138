#include "documents/model/lookup.h"

#include <algorithm>
#include <limits>

namespace documents {

namespace {

// The types of dynamic disks: LDM on an MBR disk; the data and the metadata partition on a GPT disk.
constexpr std::uint8_t kMbrLdm = 0x42;
constexpr std::string_view kLdmData = "{AF9B60A0-1431-4F62-BC68-3311714A69AD}";
constexpr std::string_view kLdmMetadata = "{5808C8AA-7E8F-42E0-85D2-E1E90434CFB3}";

bool Earlier(const PlacedExtent& one, const PlacedExtent& other) {
    return one.extent->place.start < other.extent->place.start;
}

}  // namespace

const Disk* FindDisk(const Machine& machine, std::uint32_t number) {
    const auto found =
        std::lower_bound(machine.disks.begin(), machine.disks.end(), number,
                         [](const Disk& disk, std::uint32_t wanted) { return disk.number < wanted; });
    return found == machine.disks.end() || found->number != number ? nullptr : &*found;
}

std::vector<const Partition*> PartitionsByOffset(const Disk& disk) {
    std::vector<const Partition*> partitions;
    if (disk.partitions) {
        for (const Partition& partition : *disk.partitions) {
            partitions.push_back(&partition);
        }
    }
    std::stable_sort(partitions.begin(), partitions.end(), [](const Partition* one, const Partition* other) {
        return one->place.start < other->place.start;
    });
    return partitions;
}

const Partition* PartitionAt(const Disk& disk, std::uint64_t start) {
    if (!disk.partitions) {
        return nullptr;
    }
    const auto found =
        std::find_if(disk.partitions->begin(), disk.partitions->end(),
                     [&](const Partition& partition) { return partition.place.start == start; });
    return found == disk.partitions->end() ? nullptr : &*found;
}

ExtentsByDisk::ExtentsByDisk(const Machine& machine) {
    for (const Volume& volume : machine.volumes) {
        if (!volume.extents) {
            continue;
        }
        for (std::size_t index = 0; index < volume.extents->size(); ++index) {
            const Extent& extent = (*volume.extents)[index];
            disks_[extent.disk].push_back({&volume, &extent, index});
        }
    }
    for (auto& [disk, extents] : disks_) {
        std::stable_sort(extents.begin(), extents.end(), Earlier);
    }
}

const std::vector<PlacedExtent>& ExtentsByDisk::On(std::uint32_t disk) const {
    static const std::vector<PlacedExtent> kNone;
    const auto found = disks_.find(disk);
    return found == disks_.end() ? kNone : found->second;
}

std::vector<PlacedExtent> ExtentsByDisk::Inside(std::uint32_t disk, const Range& range) const {
    const std::vector<PlacedExtent>& all = On(disk);
    const auto begin = std::lower_bound(
        all.begin(), all.end(), range.start,
        [](const PlacedExtent& one, std::uint64_t offset) { return one.extent->place.start < offset; });
    const auto end = std::lower_bound(
        begin, all.end(), EndOf(range),
        [](const PlacedExtent& one, std::uint64_t offset) { return one.extent->place.start < offset; });
    return {begin, end};
}

std::uint64_t EndOf(const Range& range) {
    const std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    return range.length > largest - range.start ? largest : range.start + range.length;
}

bool Contains(const Range& outer, const Range& inner) {
    return inner.start >= outer.start && inner.start - outer.start <= outer.length &&
           inner.length <= outer.length - (inner.start - outer.start);
}

bool Overlap(const Range& one, const Range& other) {
    return one.start < EndOf(other) && other.start < EndOf(one);
}

bool IsDynamicType(const Partition& partition) {
    return partition.mbr_type == kMbrLdm || partition.gpt_type == kLdmData ||
           partition.gpt_type == kLdmMetadata;
}

}  // namespace documents

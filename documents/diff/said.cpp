#include "documents/diff/said.h"

#include "documents/model/lookup.h"

#include <algorithm>

namespace documents::diff {

namespace {

// The flat formats have an element for every number up to the largest; they pass over larger ones.
constexpr std::uint32_t kLargestNumber = 65535;

}  // namespace

bool SaysDisk(Format other, Format own, const Disk& disk) {
    if (other == own || other == Format::kThree) {
        return true;
    }
    return disk.number <= kLargestNumber && (other == Format::kTwo || disk.style == Style::kMbr);
}

bool SaysVolume(Format other, const Machine& machine, const Volume& volume) {
    if (other == machine.format || other == Format::kThree) {
        return true;
    }
    // The flat formats have fixed volumes only. Of the others, which format 3 has, no extents are known.
    if (!volume.extents || volume.extents->empty()) {
        return false;
    }
    if (other == Format::kTwo) {
        return true;
    }
    const bool on_mbr_disks =
        std::all_of(volume.extents->begin(), volume.extents->end(), [&](const Extent& extent) {
            const Disk* const disk = FindDisk(machine, extent.disk);
            return disk != nullptr && disk->style == Style::kMbr;
        });
    return volume.path && volume.file_system && volume.dynamic != true && on_mbr_disks;
}

}  // namespace documents::diff

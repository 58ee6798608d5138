#include "documents/report/machine_parts.h"

namespace documents {

MachineParts::MachineParts(const Machine& machine) : extents_(machine) {
    for (const Disk& disk : machine.disks) {
        std::vector<DiskPart>& parts = parts_[disk.number];
        parts = PartsOf(disk, extents_);
        for (const DiskPart& part : parts) {
            if (part.extent) {
                partitions_[part.extent->extent] = part.number;
            }
            for (const PlacedExtent& other : part.others) {
                partitions_[other.extent] = part.number;
            }
        }
    }
}

std::string MachineParts::PlaceNameOf(const Extent& extent) const {
    const std::string disk = "disk " + std::to_string(extent.disk);
    const auto found = partitions_.find(&extent);
    if (found == partitions_.end()) {
        return disk + ", which is not in the document";
    }
    return found->second == 0 ? disk : disk + ", partition " + std::to_string(found->second);
}

}  // namespace documents

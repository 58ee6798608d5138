#include "documents/diff/naming.h"

#include "documents/diff/texts.h"
#include "documents/model/lookup.h"
#include "documents/show/show.h"

namespace documents::diff {

namespace {

std::string NumberedDisk(std::uint32_t number) {
    return "disk " + std::to_string(number);
}

// By a letter, else a folder; empty: neither.
std::string MountedName(const Volume& volume) {
    if (!volume.letter.value_or("").empty()) {
        return *volume.letter;
    }
    return volume.mount_points && !volume.mount_points->empty() ? volume.mount_points->front() : "";
}

std::string UnmountedName(const Volume& volume) {
    if (volume.path) {
        return *volume.path;
    }
    if (volume.extents && !volume.extents->empty()) {
        const Extent& first = volume.extents->front();
        return "at " + SizeText(first.place.start, false) + " on " + NumberedDisk(first.disk);
    }
    return volume.device.value_or("without a name");
}

}  // namespace

std::string IdOf(const Disk& disk) {
    if (disk.id) {
        return *disk.id;
    }
    return disk.signature ? SignatureText(*disk.signature) : NumberedDisk(disk.number);
}

std::string IdOf(const Disk& disk, const Partition& partition) {
    return partition.id ? *partition.id : IdOf(disk) + '@' + std::to_string(partition.place.start);
}

std::string IdOf(const Machine& machine, const Volume& volume) {
    if (volume.path) {
        return *volume.path;
    }
    if (volume.extents && !volume.extents->empty()) {
        const Extent& first = volume.extents->front();
        const Disk* const disk = FindDisk(machine, first.disk);
        return (disk != nullptr ? IdOf(*disk) : NumberedDisk(first.disk)) + '@' +
               std::to_string(first.place.start);
    }
    return volume.device.value_or("");
}

std::string SubjectOf(const DiskPair& pair) {
    std::string subject = SubjectOf(*pair.before);
    if (pair.before->number != pair.after->number) {
        subject += " (now " + std::to_string(pair.after->number) + ')';
    }
    return subject;
}

std::string SubjectOf(const Disk& disk) {
    return "Disk " + std::to_string(disk.number);
}

std::string SubjectOf(const std::string& disk, const Partition& partition) {
    return disk + ", partition at " + SizeText(partition.place.start, false);
}

std::string SubjectOf(const VolumePair& pair) {
    const Volume* const first = pair.before != nullptr ? pair.before : pair.after;
    std::string name = MountedName(*first);
    if (name.empty() && pair.after != nullptr) {
        name = MountedName(*pair.after);
    }
    return "Volume " + (name.empty() ? UnmountedName(*first) : name);
}

}  // namespace documents::diff

// Whether every volume has its place.

#include "documents/verify/rules.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace documents {

namespace {

// A removable or optical volume is not asked for its extents; nothing else is known of it either.
bool WasAsked(const Volume& volume) {
    return volume.size || volume.file_system;
}

void UnknownExtents(const Subject& subject, Report& report) {
    for (const Volume& volume : subject.machine.volumes) {
        if (!volume.extents) {
            // An optical disc has a size and a file system, but its device tells what it is.
            const bool optical = volume.device && volume.device->starts_with("\\Device\\CdRom");
            if (WasAsked(volume) && !optical) {
                report.Error(PlaceOf(volume), "The document does not say where it lies.");
            } else {
                report.Note(PlaceOf(volume),
                            "The document does not say where it lies; it is no volume of a fixed disk.");
            }
        } else if (volume.extents->empty()) {
            report.Error(PlaceOf(volume), "It has no extents.");
        }
    }
}

void KnownDisks(const Subject& subject, Report& report) {
    const Machine& machine = subject.machine;
    for (const Volume& volume : machine.volumes) {
        if (!volume.extents) {
            continue;
        }
        for (const Extent& extent : *volume.extents) {
            // Format 1 leaves out disks that exist: that is a finding of the disk.
            if (FindDisk(machine, extent.disk) == nullptr && machine.format != Format::kOne) {
                report.Error(PlaceOf(volume), "It lies on disk " + std::to_string(extent.disk) +
                                                  ", which the document does not have.");
            }
        }
    }
}

// Whether the range is inside of the partition that begins last of those that begin at or before it.
bool InsideOne(const std::vector<const Partition*>& partitions, const Range& place) {
    const auto behind = std::upper_bound(
        partitions.begin(), partitions.end(), place.start,
        [](std::uint64_t start, const Partition* partition) { return start < partition->place.start; });
    return behind != partitions.begin() && Contains((*(behind - 1))->place, place);
}

// A dynamic volume's place is in the database of the disk group; the table may have partitions of other
// places.
void CheckExtents(const Disk& disk, const std::vector<PlacedExtent>& extents, Report& report) {
    const std::vector<const Partition*> partitions = PartitionsByOffset(disk);
    for (const PlacedExtent& placed : extents) {
        const Range& place = placed.extent->place;
        const bool dynamic = placed.volume->dynamic == true;
        const bool inside =
            dynamic ? !disk.size || Contains({0, *disk.size}, place) : InsideOne(partitions, place);
        if (!inside) {
            report.Error(PlaceOf(*placed.volume), "Its extent " + std::to_string(placed.index) + " on disk " +
                                                      std::to_string(disk.number) + ", " + TextOf(place) +
                                                      ", is not inside of " +
                                                      (dynamic ? "the disk." : "a partition."));
        }
    }
}

void InsidePartitions(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        if (disk.partitions) {
            CheckExtents(disk, subject.extents.On(disk.number), report);
        }
    }
}

void Overlaps(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        const PlacedExtent* farthest = nullptr;
        for (const PlacedExtent& placed : subject.extents.On(disk.number)) {
            if (farthest != nullptr && Overlap(farthest->extent->place, placed.extent->place)) {
                report.Error(PlaceOf(*placed.volume), "Its extent " + std::to_string(placed.index) +
                                                          " on disk " + std::to_string(disk.number) +
                                                          " overlaps " + PlaceOf(*farthest->volume) + ".");
            }
            if (farthest == nullptr || EndOf(placed.extent->place) > EndOf(farthest->extent->place)) {
                farthest = &placed;
            }
        }
    }
}

// The extents of a mirror have more than the volume's length, so only the other direction is wrong.
void Sizes(const Subject& subject, Report& report) {
    for (const Volume& volume : subject.machine.volumes) {
        if (!volume.extents || volume.extents->empty() || !volume.size) {
            continue;
        }
        Range sum;
        for (const Extent& extent : *volume.extents) {
            sum.length = EndOf({sum.length, extent.place.length});
        }
        if (*volume.size > sum.length) {
            report.Error(PlaceOf(volume), "It has " + std::to_string(*volume.size) +
                                              " bytes, its extents have only " + std::to_string(sum.length) +
                                              ".");
        }
    }
}

// Reports every volume that has a text which an earlier one has.
void Unique(const Subject& subject, Report& report, const char* what,
            std::optional<std::string> Volume::*text_of) {
    std::unordered_set<std::string_view> seen;
    for (const Volume& volume : subject.machine.volumes) {
        const std::optional<std::string>& text = volume.*text_of;
        if (text && !text->empty() && !seen.insert(*text).second) {
            report.Error(PlaceOf(volume),
                         std::string("An earlier volume has the same ") + what + ": " + *text + ".");
        }
    }
}

void UniquePaths(const Subject& subject, Report& report) {
    Unique(subject, report, "GUID path", &Volume::path);
}

void UniqueReferences(const Subject& subject, Report& report) {
    Unique(subject, report, "m_GUID", &Volume::reference);
}

void UniqueLetters(const Subject& subject, Report& report) {
    Unique(subject, report, "drive letter", &Volume::letter);
}

void Dynamic(const Subject& subject, Report& report) {
    for (const Volume& volume : subject.machine.volumes) {
        if (volume.dynamic == true) {
            report.Note(PlaceOf(volume),
                        "It is dynamic: the database of its disk group is not in the document.");
        }
    }
}

void FileSystems(const Subject& subject, Report& report) {
    for (const Volume& volume : subject.machine.volumes) {
        if (!volume.file_system && volume.extents) {
            report.Note(PlaceOf(volume), "Its file system is not in the document.");
        }
    }
}

constexpr Rule kRules[] = {
    {{"D030", "the place of a volume is unknown"}, UnknownExtents},
    {{"D031", "a volume lies on a disk that the document does not have"}, KnownDisks},
    {{"D032", "a volume is not inside of a partition, a dynamic one not inside of its disk"},
     InsidePartitions},
    {{"D033", "volumes overlap"}, Overlaps},
    {{"D034", "a volume is larger than its extents"}, Sizes},
    {{"D035", "two volumes have the same GUID path"}, UniquePaths},
    {{"D036", "two volumes have the same m_GUID"}, UniqueReferences},
    {{"D037", "two volumes have the same drive letter"}, UniqueLetters},
    {{"D038", "a volume is dynamic"}, Dynamic},
    {{"D039", "the file system of a volume is unknown"}, FileSystems},
};

}  // namespace

std::span<const Rule> VolumeRules() {
    return kRules;
}

}  // namespace documents

// Whether every disk is described, and can be told from the others.

#include "documents/verify/rules.h"

#include <algorithm>
#include <map>
#include <set>

namespace documents {

namespace {

void Numbers(const Subject& subject, Report& report) {
    const std::vector<Disk>& disks = subject.machine.disks;
    for (std::size_t index = 1; index < disks.size(); ++index) {
        if (disks[index].number == disks[index - 1].number) {
            report.Error(PlaceOf(disks[index]), "The document has two disks of this number.");
        }
    }
}

void Unreadable(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        if (!disk.size) {
            report.ByVolumes(subject, disk,
                             "The capture could not read the disk, or it cannot be backed up; its size and "
                             "table are unknown.");
        }
    }
}

// Format 1 has a placeholder for a GPT disk. One note for all of them: the list can run to 255.
void Placeholders(const Subject& subject, Report& report) {
    if (subject.machine.format != Format::kOne) {
        return;
    }
    std::vector<std::uint32_t> without_volumes;
    for (const std::uint32_t number : subject.machine.placeholders) {
        if (subject.extents.On(number).empty()) {
            without_volumes.push_back(number);
        } else {
            report.Error(
                "disk " + std::to_string(number),
                "Format 1 leaves the disk out: it is a GPT disk or could not be read. Volumes lie on it.");
        }
    }
    if (!without_volumes.empty()) {
        report.Note("DiskDrives",
                    "Format 1 does not say whether there are disks with these numbers (GPT disks, or "
                    "disks that could not be read): " +
                        ListOf(without_volumes) + ".");
    }
}

void MissingGptTables(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        if (subject.machine.format == Format::kThree && disk.style == Style::kGpt) {
            report.ByVolumes(subject, disk, "Format 3 leaves out the partitions and the id of a GPT disk.");
        }
    }
}

void Styles(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        const bool known = disk.style == Style::kMbr || disk.style == Style::kGpt;
        if (disk.size && !known && !subject.extents.On(disk.number).empty()) {
            report.Error(PlaceOf(disk), "The disk has no partition table that is known. Volumes lie on it.");
        }
    }
}

void MissingIds(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        if (disk.style == Style::kMbr && !disk.signature) {
            report.Note(PlaceOf(disk), "The signature of the disk is not in the document.");
        }
        if (disk.style == Style::kGpt && !disk.id && subject.machine.format == Format::kTwo) {
            report.Note(PlaceOf(disk), "The GPT disk has no id.");
        }
    }
}

void UniqueIds(const Subject& subject, Report& report) {
    std::map<std::string, std::uint32_t> seen;
    for (const Disk& disk : subject.machine.disks) {
        const std::optional<std::string> id =
            disk.id || !disk.signature ? disk.id : std::optional(SignatureText(*disk.signature));
        if (!id) {
            continue;
        }
        const auto [first, added] = seen.emplace(*id, disk.number);
        if (!added) {
            report.Error(PlaceOf(disk),
                         "It has the same id as disk " + std::to_string(first->second) + ": " + *id + ".");
        }
    }
}

void CheckIds(const Disk& disk, const PlacedExtent& placed, Report& report) {
    const Extent& extent = *placed.extent;
    const bool other_id =
        disk.style == Style::kGpt && disk.id && extent.disk_id && *extent.disk_id != *disk.id;
    const bool other_signature = disk.style != Style::kGpt && disk.signature && extent.signature &&
                                 *extent.signature != *disk.signature;
    if (other_id || other_signature) {
        report.Error(PlaceOf(*placed.volume),
                     "Its extent " + std::to_string(placed.index) + " has another id for disk " +
                         std::to_string(disk.number) + ": " +
                         (other_id ? *extent.disk_id + " instead of " + *disk.id
                                   : SignatureText(*extent.signature) + " instead of " +
                                         SignatureText(*disk.signature)) +
                         ".");
    }
}

void ContradictingIds(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        for (const PlacedExtent& placed : subject.extents.On(disk.number)) {
            CheckIds(disk, placed, report);
        }
    }
}

constexpr Rule kRules[] = {
    {{"D010", "two disks have the same number"}, Numbers},
    {{"D011", "the size and table of a disk are unknown"}, Unreadable},
    {{"D012", "format 1 leaves disks out"}, Placeholders},
    {{"D013", "format 3 leaves out the partitions of a GPT disk"}, MissingGptTables},
    {{"D014", "volumes lie on a disk without a known partition table"}, Styles},
    {{"D015", "a disk has no id"}, MissingIds},
    {{"D016", "two disks have the same id"}, UniqueIds},
    {{"D017", "the volumes contradict a disk's id"}, ContradictingIds},
};

}  // namespace

std::span<const Rule> DiskRules() {
    return kRules;
}

}  // namespace documents

#include "documents/plan/obstacles.h"

#include "documents/model/lookup.h"

#include <algorithm>
#include <limits>
#include <map>

namespace documents {

namespace {

constexpr FindingCode kUnreadable = {"P001", "a disk cannot be made, because its size and table are unknown"};
constexpr FindingCode kLeftOut = {"P002", "a disk cannot be made, because the document leaves it out"};
constexpr FindingCode kNoPartitions = {"P003",
                                       "a disk cannot be made, because format 3 leaves out its partitions"};
constexpr FindingCode kNoTable = {
    "P004", "the document has no partition table of a disk, or one that the capture did not know"};
constexpr FindingCode kWrongTable = {"P005", "a disk cannot be made, because its table contradicts itself"};
constexpr FindingCode kNoRoom = {"P006",
                                 "a disk cannot be made, because its table has no place for a partition"};
constexpr FindingCode kDynamic = {"P007", "the database of a disk group cannot be made"};
constexpr FindingCode kHomeless = {"P008", "a volume belongs on no partition"};
constexpr FindingCode kNoType = {"P009", "a disk cannot be made, because a partition has no type"};
constexpr FindingCode kSameIds = {"P010", "two partitions of a disk have the same id"};
constexpr FindingCode kNoPlace = {"P011", "it is unknown where a volume of a fixed disk belongs"};
constexpr FindingCode kTooSmall = {"P020", "the target is too small"};
constexpr FindingCode kOtherSectors = {"P021", "the target has another sector size"};
constexpr FindingCode kSameTarget = {"P022", "two disks have the same target"};
constexpr FindingCode kNotBlank = {"P023", "the target is not blank"};

constexpr std::uint32_t kLargestGpt = 1024;  // entries; Windows makes 128

Finding Make(const FindingCode& code, Severity severity, std::string place, std::string text) {
    return {code.code, severity, std::move(place), std::move(text)};
}

// The findings of verify that tell of a table which cannot be made as it is told.
bool ContradictsTable(const Finding& finding, const Disk& disk) {
    constexpr std::string_view kCodes[] = {"D010", "D020", "D021", "D022", "D023", "D025", "D026"};
    const std::string place = PlaceOf(disk);
    return finding.severity == Severity::kError &&
           std::find(std::begin(kCodes), std::end(kCodes), finding.code) != std::end(kCodes) &&
           (finding.place == place || finding.place.starts_with(place + ","));
}

// Without a partition, a gap from the first byte of an MBR disk tells that there is no table either. A GPT
// without entries has such a gap too.
bool HasNoTable(const Disk& disk) {
    if (disk.style != Style::kMbr) {
        return disk.style != Style::kGpt;
    }
    const bool whole_gap = disk.gaps && !disk.gaps->empty() && disk.gaps->front().place.start == 0;
    return disk.partitions && disk.partitions->empty() && !disk.extended && whole_gap;
}

// None if all have one.
const Partition* WithoutType(const Disk& disk) {
    const auto found =
        std::find_if(disk.partitions->begin(), disk.partitions->end(), [&](const Partition& partition) {
            return disk.style == Style::kGpt ? !partition.gpt_type : partition.mbr_type.value_or(0) == 0;
        });
    return found == disk.partitions->end() ? nullptr : &*found;
}

bool FitsMbr(const TableEntry& entry, std::uint32_t sector) {
    constexpr std::uint64_t kSectors = std::numeric_limits<std::uint32_t>::max();
    return entry.place.start >= sector && entry.place.start / sector <= kSectors &&
           entry.place.length / sector <= kSectors;
}

bool FitsGpt(const TableEntry& entry, const Table& table, const Disk& disk) {
    const std::uint32_t sector = SectorSizeOf(disk);
    const GptReserve reserve = ReserveOf(table, sector);
    const bool ends_inside =
        !disk.size || (*disk.size / sector > reserve.behind &&
                       EndOf(entry.place) <= (*disk.size / sector - reserve.behind) * sector);
    return entry.place.start >= reserve.first * sector && ends_inside;
}

std::string WhatHasNoRoom(const Disk& disk) {
    const Table table = TableOf(disk);
    if (table.length > kLargestGpt) {
        return "A partition has the number " + std::to_string(table.length) + ".";
    }
    for (const TableEntry& entry : table.entries) {
        const bool fits =
            disk.style == Style::kGpt ? FitsGpt(entry, table, disk) : FitsMbr(entry, SectorSizeOf(disk));
        if (!fits) {
            return "A partition takes the bytes " + TextOf(entry.place) +
                   ", which the table of its kind needs or cannot address.";
        }
    }
    return {};
}

// The table is made with both.
std::vector<Finding> SameIds(const Disk& disk) {
    std::vector<Finding> findings;
    std::map<std::string, std::uint64_t> starts;
    for (const Partition& partition : disk.partitions.value_or(std::vector<Partition>())) {
        if (!partition.id) {
            continue;
        }
        const auto [first, added] = starts.emplace(*partition.id, partition.place.start);
        if (!added) {
            findings.push_back(Make(kSameIds, Severity::kError, PlaceOf(disk, partition),
                                    "It has the same id as the partition at " +
                                        std::to_string(first->second) + ": " + *partition.id + "."));
        }
    }
    return findings;
}

bool InsideAPartition(const Disk& disk, const Range& place) {
    return std::any_of(disk.partitions->begin(), disk.partitions->end(),
                       [&](const Partition& partition) { return Contains(partition.place, place); });
}

}  // namespace

std::vector<FindingCode> PlanCodes() {
    return {kUnreadable, kLeftOut, kNoPartitions, kNoTable,  kWrongTable,   kNoRoom,     kDynamic, kHomeless,
            kNoType,     kSameIds, kNoPlace,      kTooSmall, kOtherSectors, kSameTarget, kNotBlank};
}

std::optional<Finding> ObstacleOf(const Subject& subject, const Disk& disk,
                                  const std::vector<Finding>& verified) {
    const Severity severity = subject.extents.On(disk.number).empty() ? Severity::kNote : Severity::kError;
    const auto because = [&](const FindingCode& code, const std::string& text) {
        return Make(code, severity, PlaceOf(disk), text);
    };
    if (!disk.size) {
        return because(
            kUnreadable,
            "The capture could not read it, or it cannot be backed up: its size and its table are unknown.");
    }
    if (HasNoTable(disk)) {
        return because(kNoTable,
                       "The document has no partition table of it: there was none, or one that the capture "
                       "did not know.");
    }
    if (!disk.partitions) {
        return because(kNoPartitions, "The document leaves out the partitions of a GPT disk and its id.");
    }
    const auto wrong = std::find_if(verified.begin(), verified.end(),
                                    [&](const Finding& finding) { return ContradictsTable(finding, disk); });
    if (wrong != verified.end()) {
        return because(kWrongTable, "Its table cannot be made as it is told: " + std::string(wrong->code) +
                                        ", " + wrong->place + ": " + wrong->text);
    }
    if (const Partition* const without_type = WithoutType(disk)) {
        return because(kNoType, "The partition at " + std::to_string(without_type->place.start) +
                                    " has no type that a table of this kind can have.");
    }
    const std::string no_room = WhatHasNoRoom(disk);
    return no_room.empty() ? std::nullopt : std::optional(because(kNoRoom, no_room));
}

std::vector<Finding> MissingDisks(const Subject& subject, const std::set<std::uint32_t>& chosen) {
    std::vector<Finding> findings;
    std::vector<std::uint32_t> perhaps;
    for (const std::uint32_t number : LeftOutDisks(subject)) {
        if (!chosen.empty() && !chosen.contains(number)) {
            continue;
        }
        if (subject.extents.On(number).empty()) {
            perhaps.push_back(number);
        } else {
            findings.push_back(Make(kLeftOut, Severity::kError, "disk " + std::to_string(number),
                                    "The document leaves it out, but volumes lie on it."));
        }
    }
    if (!perhaps.empty()) {
        findings.push_back(
            Make(kLeftOut, Severity::kNote, "DiskDrives",
                 "Format 1 leaves out GPT disks and disks that could not be read. Whether there "
                 "are disks with these numbers is unknown: " +
                     ListOf(perhaps) + "."));
    }
    return findings;
}

std::set<std::uint32_t> LeftOutDisks(const Subject& subject) {
    const Machine& machine = subject.machine;
    std::set<std::uint32_t> numbers;
    if (machine.format == Format::kOne) {
        numbers.insert(machine.placeholders.begin(), machine.placeholders.end());
    }
    for (const Volume& volume : machine.volumes) {
        for (const Extent& extent : volume.extents.value_or(std::vector<Extent>())) {
            if (FindDisk(machine, extent.disk) == nullptr) {
                numbers.insert(extent.disk);
            }
        }
    }
    return numbers;
}

std::vector<Finding> UnplacedVolumes(const std::vector<Finding>& verified) {
    std::vector<Finding> findings;
    for (const Finding& finding : verified) {
        if (finding.code == "D030" && finding.severity == Severity::kError) {
            findings.push_back(
                Make(kNoPlace, Severity::kError, finding.place,
                     "It is unknown where it belongs: " + std::string(finding.code) + ", " + finding.text));
        }
    }
    return findings;
}

std::vector<Finding> LossesOn(const Subject& subject, const DiskPlan& plan) {
    const Disk& disk = *plan.disk;
    std::vector<Finding> findings = SameIds(disk);
    const bool dynamic_partition =
        disk.partitions && std::any_of(disk.partitions->begin(), disk.partitions->end(), IsDynamicType);
    if (disk.dynamic == true || dynamic_partition) {
        findings.push_back(Make(
            kDynamic, Severity::kNote, PlaceOf(disk),
            plan.obstacle ? "It is dynamic: neither its table nor the database of its disk group is made."
                          : "It is dynamic: its table is made, the database of its disk group is not."));
    }
    for (const PlacedExtent& placed : subject.extents.On(disk.number)) {
        if (placed.volume->dynamic == true) {
            findings.push_back(Make(kDynamic, Severity::kNote, PlaceOf(*placed.volume),
                                    "It is dynamic: its extent on disk " + std::to_string(disk.number) +
                                        ", " + TextOf(placed.extent->place) + ", is to be made by Windows."));
        } else if (disk.partitions && !InsideAPartition(disk, placed.extent->place)) {
            findings.push_back(Make(kHomeless, Severity::kError, PlaceOf(*placed.volume),
                                    "Its extent on disk " + std::to_string(disk.number) + ", " +
                                        TextOf(placed.extent->place) + ", is inside of no partition."));
        }
    }
    return findings;
}

std::vector<Finding> RefusalsOf(const DiskPlan& plan) {
    const Disk& disk = *plan.disk;
    const Target& target = plan.target;
    std::vector<Finding> findings;
    const auto refuse = [&](const FindingCode& code, const std::string& text) {
        findings.push_back(Make(code, Severity::kError, PlaceOf(disk), text));
    };
    const std::string name = target.path ? "The target " + *target.path : "The target";
    if (!plan.obstacle && target.size && *target.size < NeededSize(disk, plan.table)) {
        refuse(kTooSmall, name + " has " + std::to_string(*target.size) + " bytes; the table needs " +
                              std::to_string(NeededSize(disk, plan.table)) + ".");
    }
    if (!plan.obstacle && target.sector_size && *target.sector_size != SectorSizeOf(disk)) {
        refuse(kOtherSectors, name + " has sectors of " + std::to_string(*target.sector_size) +
                                  " bytes; the disk had " + std::to_string(SectorSizeOf(disk)) + ".");
    }
    if (!target.blank) {
        refuse(kNotBlank, name + " is not blank: its first or its last MiB is not zero.");
    }
    return findings;
}

Finding SameTargetRefusal(const Disk& disk, const Disk& other, const Target& target) {
    return Make(kSameTarget, Severity::kError, PlaceOf(disk),
                "The target " + target.path.value_or("") + " is that of disk " +
                    std::to_string(other.number) + " too.");
}

}  // namespace documents

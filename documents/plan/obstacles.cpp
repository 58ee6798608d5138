#include "documents/plan/obstacles.h"

#include "documents/model/lookup.h"

#include <algorithm>
#include <limits>

namespace documents {

namespace {

constexpr FindingCode kUnreadable = {"P001", "a disk cannot be made, because the capture could not read it"};
constexpr FindingCode kLeftOut = {"P002", "a disk cannot be made, because format 1 leaves it out"};
constexpr FindingCode kNoPartitions = {"P003",
                                       "a disk cannot be made, because format 3 leaves out its partitions"};
constexpr FindingCode kNoTable = {"P004", "a disk had no partition table"};
constexpr FindingCode kWrongTable = {"P005", "a disk cannot be made, because its table contradicts itself"};
constexpr FindingCode kNoRoom = {"P006",
                                 "a disk cannot be made, because its table has no place for a partition"};
constexpr FindingCode kDynamic = {"P007", "the database of a disk group cannot be made"};
constexpr FindingCode kHomeless = {"P008", "a volume belongs on no partition"};
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

// Without a partition, a gap from the disk's first byte tells that there is no table either.
bool HasNoTable(const Disk& disk) {
    if (disk.style == Style::kRaw) {
        return true;
    }
    const bool whole_gap = disk.gaps && !disk.gaps->empty() && disk.gaps->front().place.start == 0;
    return !disk.style || (disk.partitions && disk.partitions->empty() && !disk.extended && whole_gap);
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

bool InsideAPartition(const Disk& disk, const Range& place) {
    return std::any_of(disk.partitions->begin(), disk.partitions->end(),
                       [&](const Partition& partition) { return Contains(partition.place, place); });
}

}  // namespace

std::vector<FindingCode> PlanCodes() {
    return {kUnreadable, kLeftOut,  kNoPartitions, kNoTable,      kWrongTable, kNoRoom,
            kDynamic,    kHomeless, kTooSmall,     kOtherSectors, kSameTarget, kNotBlank};
}

std::optional<Finding> ObstacleOf(const Subject& subject, const Disk& disk,
                                  const std::vector<Finding>& verified) {
    const Severity severity = subject.extents.On(disk.number).empty() ? Severity::kNote : Severity::kError;
    const auto because = [&](const FindingCode& code, const std::string& text) {
        return Make(code, severity, PlaceOf(disk), text);
    };
    if (!disk.size) {
        return because(kUnreadable, "The capture could not read it: its size and its table are unknown.");
    }
    if (HasNoTable(disk)) {
        return because(kNoTable, "The document tells of no partition table on it.");
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
    const std::string no_room = WhatHasNoRoom(disk);
    return no_room.empty() ? std::nullopt : std::optional(because(kNoRoom, no_room));
}

std::vector<Finding> MissingDisks(const Subject& subject) {
    std::vector<Finding> findings;
    for (const std::uint32_t number : subject.machine.placeholders) {
        if (!subject.extents.On(number).empty()) {
            findings.push_back(Make(kLeftOut, Severity::kError, "disk " + std::to_string(number),
                                    "The document leaves it out, but volumes lie on it."));
        }
    }
    return findings;
}

std::vector<Finding> LossesOn(const Subject& subject, const Disk& disk) {
    std::vector<Finding> findings;
    const bool dynamic_partition =
        disk.partitions && std::any_of(disk.partitions->begin(), disk.partitions->end(), IsDynamicType);
    if (disk.dynamic == true || dynamic_partition) {
        findings.push_back(Make(kDynamic, Severity::kNote, PlaceOf(disk),
                                "It is dynamic: its table is made, the database of its disk group is not."));
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

std::vector<Finding> RefusalsOf(const Disk& disk, const Table& table, const Target& target) {
    std::vector<Finding> findings;
    const auto refuse = [&](const FindingCode& code, const std::string& text) {
        findings.push_back(Make(code, Severity::kError, PlaceOf(disk), text));
    };
    const std::string name = target.path ? "The target " + *target.path : "The target";
    if (target.size && *target.size < NeededSize(disk, table)) {
        refuse(kTooSmall, name + " has " + std::to_string(*target.size) + " bytes; the table needs " +
                              std::to_string(NeededSize(disk, table)) + ".");
    }
    if (target.sector_size && *target.sector_size != SectorSizeOf(disk)) {
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

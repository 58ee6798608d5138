// Whether the partition tables can be made as they are told.

#include "documents/verify/rules.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace documents {

namespace {

template <class Check>
void ForEachPartition(const Subject& subject, Check&& check) {
    for (const Disk& disk : subject.machine.disks) {
        if (disk.partitions) {
            for (const Partition& partition : *disk.partitions) {
                check(disk, partition);
            }
        }
    }
}

// Format 3 says the place of the extended partition itself; in the others it follows from the rows in it.
const Range* SaidExtended(const Disk& disk) {
    return disk.extended && disk.extended_entry ? &*disk.extended : nullptr;
}

std::string PlaceOfExtended(const Disk& disk, const Range& extended) {
    return PlaceOf(disk) + ", extended partition at " + std::to_string(extended.start);
}

std::string BehindEnd(const Range& place, std::uint64_t size) {
    return "It takes the bytes " + TextOf(place) + "; the disk has " + std::to_string(size) + ".";
}

void InsideDisk(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        const Range* const extended = SaidExtended(disk);
        if (extended != nullptr && disk.size && !Contains({0, *disk.size}, *extended)) {
            report.Error(PlaceOfExtended(disk, *extended), BehindEnd(*extended, *disk.size));
        }
    }
    ForEachPartition(subject, [&](const Disk& disk, const Partition& partition) {
        if (disk.size && !Contains({0, *disk.size}, partition.place)) {
            report.Error(PlaceOf(disk, partition), BehindEnd(partition.place, *disk.size));
        }
    });
}

void Lengths(const Subject& subject, Report& report) {
    ForEachPartition(subject, [&](const Disk& disk, const Partition& partition) {
        if (partition.place.length == 0) {
            report.Error(PlaceOf(disk, partition), "Its length is 0.");
        }
    });
}

// Compares each partition with the one that reaches farthest of those before it.
void Overlaps(const Subject& subject, Report& report) {
    for (const Disk& disk : subject.machine.disks) {
        const Range* const extended = SaidExtended(disk);
        const Partition* farthest = nullptr;
        for (const Partition* const partition : PartitionsByOffset(disk)) {
            if (extended != nullptr && partition->kind == PartitionKind::kPrimary &&
                Overlap(*extended, partition->place)) {
                report.Error(PlaceOf(disk, *partition), "It overlaps the extended partition at " +
                                                            std::to_string(extended->start) + ".");
            }
            if (farthest != nullptr && Overlap(farthest->place, partition->place)) {
                report.Error(PlaceOf(disk, *partition),
                             "It overlaps the partition at " + std::to_string(farthest->place.start) + ".");
            }
            if (farthest == nullptr || EndOf(partition->place) > EndOf(farthest->place)) {
                farthest = partition;
            }
        }
    }
}

void Sectors(const Subject& subject, Report& report) {
    ForEachPartition(subject, [&](const Disk& disk, const Partition& partition) {
        if (disk.sector_size && (partition.place.start % *disk.sector_size != 0 ||
                                 partition.place.length % *disk.sector_size != 0)) {
            report.Error(PlaceOf(disk, partition), "It does not begin and end at sectors of " +
                                                       std::to_string(*disk.sector_size) + " bytes.");
        }
    });
}

void UniqueIds(const Subject& subject, Report& report) {
    std::unordered_map<std::string_view, std::pair<const Disk*, const Partition*>> seen;
    ForEachPartition(subject, [&](const Disk& disk, const Partition& partition) {
        if (!partition.id) {
            return;
        }
        const auto [found, added] = seen.emplace(*partition.id, std::pair(&disk, &partition));
        if (!added) {
            const auto [first_disk, first] = found->second;
            report.Error(PlaceOf(disk, partition), "It has the same id as " + PlaceOf(*first_disk, *first) +
                                                       ": " + *partition.id + ".");
        }
    });
}

// An MBR has four slots; one of them is the extended partition's if there are logical ones.
void Slots(const Subject& subject, Report& report) {
    constexpr std::size_t kSlots = 4;
    for (const Disk& disk : subject.machine.disks) {
        if (disk.style != Style::kMbr || !disk.partitions) {
            continue;
        }
        const auto primaries = static_cast<std::size_t>(
            std::count_if(disk.partitions->begin(), disk.partitions->end(),
                          [](const Partition& one) { return one.kind == PartitionKind::kPrimary; }));
        const bool extended = primaries < disk.partitions->size() || disk.extended;
        if (primaries + (extended ? 1 : 0) > kSlots) {
            report.Error(PlaceOf(disk), "An MBR has no room for " + std::to_string(primaries) +
                                            " primary partitions" +
                                            (extended ? " and an extended one." : "."));
        }
    }
}

void InsideExtended(const Subject& subject, Report& report) {
    ForEachPartition(subject, [&](const Disk& disk, const Partition& partition) {
        if (partition.kind != PartitionKind::kLogical) {
            return;
        }
        if (disk.style == Style::kGpt) {
            report.Error(PlaceOf(disk, partition), "A GPT disk has no logical partitions.");
        } else if (disk.extended && !Contains(*disk.extended, partition.place)) {
            report.Error(PlaceOf(disk, partition),
                         "It is not inside of the extended partition, " + TextOf(*disk.extended) + ".");
        }
    });
}

constexpr Rule kRules[] = {
    {{"D020", "a partition is not inside of its disk"}, InsideDisk},
    {{"D021", "a partition has no length"}, Lengths},
    {{"D022", "partitions overlap"}, Overlaps},
    {{"D023", "a partition does not fit the sectors"}, Sectors},
    {{"D024", "two partitions have the same id"}, UniqueIds},
    {{"D025", "more primary partitions than an MBR has room for"}, Slots},
    {{"D026", "a logical partition is not in an extended one"}, InsideExtended},
};

}  // namespace

std::span<const Rule> PartitionRules() {
    return kRules;
}

}  // namespace documents

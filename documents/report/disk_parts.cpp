#include "documents/report/disk_parts.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <utility>

namespace documents {

namespace {

// Tables and the alignment of partitions take less.
constexpr std::uint64_t kNegligible = std::uint64_t{1} << 20U;

using Extents = std::vector<PlacedExtent>;

// The extents of each partition, and at the end of the list those that begin in none.
std::vector<Extents> ExtentsOfPartitions(const std::vector<const Partition*>& partitions,
                                         const Extents& extents) {
    std::vector<Extents> lists(partitions.size() + 1);
    for (const PlacedExtent& extent : extents) {
        const std::uint64_t start = extent.extent->place.start;
        const auto behind = std::upper_bound(
            partitions.begin(), partitions.end(), start,
            [](std::uint64_t offset, const Partition* partition) { return offset < partition->place.start; });
        const auto before = static_cast<std::size_t>(behind - partitions.begin());
        const bool inside = before > 0 && start < EndOf(partitions[before - 1]->place);
        lists[inside ? before - 1 : partitions.size()].push_back(extent);
    }
    return lists;
}

Range Between(std::uint64_t start, std::uint64_t end) {
    return {start, end > start ? end - start : 0};
}

// Several volumes in one place: the part is that of the first with a letter or a folder.
void SetVolumes(DiskPart& part, Extents extents) {
    const auto is_mounted = [](const PlacedExtent& extent) {
        const Volume& volume = *extent.volume;
        return (volume.letter && !volume.letter->empty()) ||
               (volume.mount_points && !volume.mount_points->empty());
    };
    if (extents.empty()) {
        return;
    }
    auto chosen = std::find_if(extents.begin(), extents.end(), is_mounted);
    chosen = chosen == extents.end() ? extents.begin() : chosen;
    part.extent = *chosen;
    extents.erase(chosen);
    part.others = std::move(extents);
}

// The extents, those in one place together. They are by offset.
std::vector<Extents> ByPlace(const Extents& extents) {
    std::vector<Extents> places;
    for (const PlacedExtent& extent : extents) {
        if (places.empty() || places.back().front().extent->place != extent.extent->place) {
            places.emplace_back();
        }
        places.back().push_back(extent);
    }
    return places;
}

// One part for each place of an extent in the partition, and the pieces between them.
void AddPieces(std::vector<DiskPart>& parts, const DiskPart& partition, const Extents& extents) {
    std::uint64_t done = partition.place.start;
    const auto add_rest = [&](std::uint64_t end) {
        DiskPart rest = partition;
        rest.place = Between(done, end);
        if (rest.place.length > kNegligible) {
            parts.push_back(rest);
        }
    };
    for (Extents& volumes : ByPlace(extents)) {
        DiskPart piece = partition;
        piece.place = volumes.front().extent->place;
        SetVolumes(piece, std::move(volumes));
        add_rest(piece.place.start);
        done = std::max(done, EndOf(piece.place));
        parts.push_back(std::move(piece));
    }
    add_rest(EndOf(partition.place));
}

void AddPartition(std::vector<DiskPart>& parts, DiskPart partition, const Extents& extents) {
    if (!extents.empty() && IsDynamicType(*partition.partition)) {
        AddPieces(parts, partition, extents);
    } else {
        SetVolumes(partition, extents);
        parts.push_back(std::move(partition));
    }
}

// A volume may lie where the document has a gap, on a disk that it has no table of.
void AddGaps(std::vector<DiskPart>& parts, const Disk& disk, const Extents& outside) {
    if (!disk.gaps) {
        return;
    }
    // The farthest end of the extents up to each one. They are by offset.
    std::vector<std::uint64_t> ends;
    for (const PlacedExtent& extent : outside) {
        ends.push_back(std::max(EndOf(extent.extent->place), ends.empty() ? 0 : ends.back()));
    }
    for (const Gap& gap : *disk.gaps) {
        const auto behind = std::lower_bound(
            outside.begin(), outside.end(), EndOf(gap.place),
            [](const PlacedExtent& extent, std::uint64_t end) { return extent.extent->place.start < end; });
        const auto before = static_cast<std::size_t>(behind - outside.begin());
        const bool taken = before > 0 && ends[before - 1] > gap.place.start;
        if (!taken) {
            DiskPart part;
            part.kind = PartKind::kGap;
            part.place = gap.place;
            part.in_extended = gap.in_extended;
            parts.push_back(part);
        }
    }
}

// The parts that the document names, by offset.
std::vector<DiskPart> NamedParts(const Disk& disk, const ExtentsByDisk& extents) {
    const std::vector<const Partition*> partitions = PartitionsByOffset(disk);
    const std::vector<Extents> lists = ExtentsOfPartitions(partitions, extents.On(disk.number));
    std::vector<DiskPart> parts;
    for (std::size_t index = 0; index < partitions.size(); ++index) {
        DiskPart part;
        part.place = partitions[index]->place;
        part.in_extended = partitions[index]->kind == PartitionKind::kLogical;
        part.partition = partitions[index];
        part.number = static_cast<std::uint32_t>(index + 1);
        AddPartition(parts, part, lists[index]);
    }
    for (Extents& volumes : ByPlace(lists.back())) {
        DiskPart part;
        part.kind = PartKind::kVolume;
        part.place = volumes.front().extent->place;
        SetVolumes(part, std::move(volumes));
        parts.push_back(std::move(part));
    }
    AddGaps(parts, disk, lists.back());
    std::stable_sort(parts.begin(), parts.end(), [](const DiskPart& one, const DiskPart& other) {
        return one.place.start < other.place.start;
    });
    return parts;
}

// A range that the document names no part in. What lies behind the disk's end is not on it.
void AddSpace(std::vector<DiskPart>& parts, const Disk& disk, Range place) {
    const std::uint64_t end = std::min(EndOf(place), disk.size.value_or(EndOf(place)));
    const Range extended = disk.extended.value_or(Range{});
    // An end of the extended partition divides the range.
    std::uint64_t start = place.start;
    for (const std::uint64_t stop : {extended.start, EndOf(extended), end}) {
        const Range piece = Between(start, std::min(stop, end));
        if (piece.length > kNegligible) {
            DiskPart part;
            part.kind = disk.partitions ? PartKind::kGap : PartKind::kUndescribed;
            part.place = piece;
            part.in_extended = Contains(extended, piece);
            parts.push_back(part);
        }
        start = std::max(start, std::min(stop, end));
    }
}

}  // namespace

std::vector<DiskPart> PartsOf(const Disk& disk, const ExtentsByDisk& extents) {
    std::vector<DiskPart> named = NamedParts(disk, extents);
    if (named.empty() && !disk.partitions) {
        return named;
    }
    std::vector<DiskPart> parts;
    std::uint64_t done = 0;
    for (DiskPart& part : named) {
        // The pieces of a partition have its own small pieces between them.
        const Range whole = part.partition == nullptr ? part.place : part.partition->place;
        AddSpace(parts, disk, Between(done, std::min(whole.start, part.place.start)));
        done = std::max({done, EndOf(whole), EndOf(part.place)});
        parts.push_back(std::move(part));
    }
    AddSpace(parts, disk, Between(done, disk.size.value_or(0)));
    return parts;
}

}  // namespace documents

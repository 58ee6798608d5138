#include "documents/diff/volume_changes.h"

#include "documents/diff/naming.h"

#include <algorithm>
#include <utility>

namespace documents::diff {

namespace {

using VolumeField = Field<Volume>;

Value MountPointsOf(const Volume& volume) {
    if (!volume.mount_points) {
        return {};
    }
    std::vector<std::string> paths = *volume.mount_points;
    std::sort(paths.begin(), paths.end());
    return paths;
}

Value LetterOf(const Volume& volume) {
    return ValueOf(volume.letter);
}

Value ExtentsOf(const Volume& volume) {
    if (!volume.extents) {
        return {};
    }
    std::vector<Place> places;
    for (const Extent& extent : *volume.extents) {
        places.push_back({extent.disk, extent.place.start, extent.place.length});
    }
    return places;
}

constexpr VolumeField kFieldTable[] = {
    {"path", "volume GUID path", Unit::kPlain, Kind::kChanged, kDescribes | kMayVanish | kSilent,
     [](const Volume& volume) { return ValueOf(volume.path); }},
    {"size", "size", Unit::kBytes, Kind::kResized, kDescribes,
     [](const Volume& volume) { return ValueOf(volume.size); }},
    {"dynamic", "dynamic", Unit::kPlain, Kind::kDynamic, kNoFlags,
     [](const Volume& volume) { return ValueOf(volume.dynamic); }},
    {"label", "label", Unit::kQuoted, Kind::kRelabelled, kDescribes,
     [](const Volume& volume) { return ValueOf(volume.label); }},
    {"fileSystem", "file system", Unit::kPlain, Kind::kReformatted, kDescribes | kMayVanish,
     [](const Volume& volume) { return ValueOf(volume.file_system); }},
    {"serial", "serial number", Unit::kSerial, Kind::kReformatted, kDescribes,
     [](const Volume& volume) { return ValueOf(volume.serial); }},
    {"clusterSize", "cluster size", Unit::kBytes, Kind::kReformatted, kNoFlags,
     [](const Volume& volume) { return ValueOf(volume.block_size); }},
    {"boot", "the boot volume", Unit::kPlain, Kind::kRole, kNoFlags,
     [](const Volume& volume) { return ValueOf(volume.boot); }},
    {"system", "the system volume", Unit::kPlain, Kind::kRole, kNoFlags,
     [](const Volume& volume) { return ValueOf(volume.system); }},
    {"device", "device name", Unit::kPlain, Kind::kChanged, kOnlyAll,
     [](const Volume& volume) { return ValueOf(volume.device); }},
    {"flags", "flags of the file system", Unit::kSignature, Kind::kChanged, kOnlyAll,
     [](const Volume& volume) { return ValueOf(volume.flags); }},
    {"used", "used space", Unit::kBytes, Kind::kChanged, kOnlyAll,
     [](const Volume& volume) { return ValueOf(volume.used); }},
    {"free", "free space", Unit::kBytes, Kind::kChanged, kOnlyAll,
     [](const Volume& volume) { return ValueOf(volume.free); }},
};

constexpr std::span<const VolumeField> kFields = kFieldTable;

constexpr VolumeField kMountPoints = {"mountPoints",    "mount points",          Unit::kPlain,
                                      Kind::kRemounted, kDescribes | kMayVanish, MountPointsOf};
constexpr VolumeField kLetter = {"letter",         "drive letter", Unit::kPlain,
                                 Kind::kRemounted, kDescribes,     LetterOf};
constexpr VolumeField kExtents = {"extents", "", Unit::kPlain, Kind::kMoved, kDescribes | kMayVanish,
                                  ExtentsOf};

// Folders are only in format 3.
const VolumeField& MountField(const Volume& before, const Volume& after, const CompareRules& rules) {
    const bool both_have_folders = before.mount_points && after.mount_points;
    const bool one_has_folders = before.mount_points || after.mount_points;
    return both_have_folders || (one_has_folders && rules.same_format) ? kMountPoints : kLetter;
}

std::uint64_t LengthOf(const std::vector<Extent>& extents) {
    std::uint64_t length = 0;
    for (const Extent& extent : extents) {
        length += extent.place.length;
    }
    return length;
}

// Whether the first extents lie where they were; some may have been added or removed at the end.
bool BeginInSamePlaces(const std::vector<Extent>& before, const std::vector<Extent>& after,
                       const DiskPairs& disks) {
    const std::size_t common = std::min(before.size(), after.size());
    for (std::size_t index = 0; index < common; ++index) {
        if (before[index].place.start != after[index].place.start ||
            disks.KeyOfBefore(before[index].disk) != disks.KeyOfAfter(after[index].disk)) {
            return false;
        }
    }
    return common > 0 || before.size() == after.size();
}

bool SameLengths(const std::vector<Extent>& before, const std::vector<Extent>& after) {
    return std::equal(
        before.begin(), before.end(), after.begin(), after.end(),
        [](const Extent& one, const Extent& other) { return one.place.length == other.place.length; });
}

ValuePair PairOf(const VolumeField& field, const Volume* before, const Volume* after) {
    return {field.name, field.words, field.unit, before != nullptr ? field.value(*before) : Value(),
            after != nullptr ? field.value(*after) : Value()};
}

// The numbers of disks may differ although the disks are the same, so extents are not compared as values.
void CompareExtents(const Volume& before, const Volume& after, const DiskPairs& disks,
                    const CompareRules& rules, std::vector<Change>& changes) {
    if (!before.extents || !after.extents) {
        CompareField(kExtents, before, after, rules, changes);
        return;
    }
    const bool resized = std::any_of(changes.begin(), changes.end(),
                                     [](const Change& change) { return change.kind == Kind::kResized; });
    if (!BeginInSamePlaces(*before.extents, *after.extents, disks)) {
        AddValues(changes, Kind::kMoved, PairOf(kExtents, &before, &after));
    } else if (!resized && !SameLengths(*before.extents, *after.extents)) {
        const bool same_sum = LengthOf(*before.extents) == LengthOf(*after.extents);
        AddValues(changes, same_sum ? Kind::kMoved : Kind::kResized, PairOf(kExtents, &before, &after));
    }
}

Change WholeVolume(Kind kind, const Volume* before, const Volume* after) {
    Change change;
    change.kind = kind;
    change.values = Describe(kFields, before, after);
    const bool has_folders =
        (before == nullptr || before->mount_points) && (after == nullptr || after->mount_points);
    for (const VolumeField* field : {has_folders ? &kMountPoints : &kLetter, &kExtents}) {
        ValuePair values = PairOf(*field, before, after);
        if (values.before.index() != 0 || values.after.index() != 0) {
            change.values.push_back(std::move(values));
        }
    }
    return change;
}

bool IsReplaced(const VolumePair& pair) {
    return pair.by_place && pair.before->path && pair.after->path && pair.before->path != pair.after->path;
}

std::vector<Change> ChangesOf(const VolumePair& pair, const DiskPairs& disks, bool disk_told,
                              const CompareRules& rules) {
    if (pair.before == nullptr) {
        return {WholeVolume(Kind::kAdded, nullptr, pair.after)};
    }
    if (pair.after == nullptr) {
        return {WholeVolume(Kind::kRemoved, pair.before, nullptr)};
    }
    if (IsReplaced(pair)) {
        return {WholeVolume(Kind::kReplaced, pair.before, pair.after)};
    }
    std::vector<Change> changes = CompareFields(kFields, *pair.before, *pair.after, rules);
    CompareExtents(*pair.before, *pair.after, disks, rules, changes);
    CompareField(MountField(*pair.before, *pair.after, rules), *pair.before, *pair.after, rules, changes);
    if (disk_told) {
        std::erase_if(changes, [](const Change& change) { return change.kind == Kind::kDynamic; });
    }
    return changes;
}

}  // namespace

std::vector<Change> CompareVolume(const VolumePair& pair, const std::string& id, const DiskPairs& disks,
                                  bool disk_told, const CompareRules& rules) {
    std::vector<Change> changes = ChangesOf(pair, disks, disk_told, rules);
    NameAll(changes, {Object::kVolume, id, SubjectOf(pair), pair.guess});
    return changes;
}

}  // namespace documents::diff

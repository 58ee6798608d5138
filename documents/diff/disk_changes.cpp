#include "documents/diff/disk_changes.h"

#include "documents/diff/naming.h"
#include "documents/model/lookup.h"

#include <algorithm>

namespace documents::diff {

namespace {

using DiskField = Field<Disk>;

Value StyleOf(const Disk& disk) {
    if (!disk.style) {
        return {};
    }
    switch (*disk.style) {
        case Style::kMbr:
            return std::string("MBR");
        case Style::kGpt:
            return std::string("GPT");
        case Style::kRaw:
            break;
    }
    return std::string("none");
}

Value PartitionsOf(const Disk& disk) {
    if (!disk.partitions) {
        return {};
    }
    std::vector<Place> places;
    for (const Partition* partition : PartitionsByOffset(disk)) {
        places.push_back({std::nullopt, partition->place.start, partition->place.length});
    }
    return places;
}

// Only documents of one format can be compared by it: its absence means that there is none.
Value ExtendedOf(const Disk& disk) {
    if (!disk.extended) {
        return {};
    }
    return std::vector{Place{std::nullopt, disk.extended->start, disk.extended->length}};
}

template <auto Member>
Value GeometryValue(const Disk& disk) {
    return disk.geometry ? Value(static_cast<std::int64_t>((*disk.geometry).*Member)) : Value();
}

// What a conversion is about, or changes with it.
constexpr DiskField kStyleFields[] = {
    {"style", "", Unit::kPlain, Kind::kConverted, kDescribes, StyleOf},
    {"id", "identifier", Unit::kPlain, Kind::kChanged, kDescribes,
     [](const Disk& disk) { return ValueOf(disk.id); }},
    {"signature", "signature", Unit::kSignature, Kind::kChanged, kDescribes,
     [](const Disk& disk) { return ValueOf(disk.signature); }},
    {"extendedPartition", "extended partition", Unit::kPlain, Kind::kChanged, kMayVanish, ExtendedOf},
};

constexpr DiskField kFields[] = {
    {"number", "", Unit::kPlain, Kind::kRenumbered, kDescribes | kSilent,
     [](const Disk& disk) { return Value(std::uint64_t{disk.number}); }},
    {"size", "size", Unit::kBytes, Kind::kResized, kDescribes | kMayVanish,
     [](const Disk& disk) { return ValueOf(disk.size); }},
    {"dynamic", "dynamic", Unit::kPlain, Kind::kDynamic, kNoFlags,
     [](const Disk& disk) { return ValueOf(IsDynamic(disk)); }},
    {"sectorSize", "sector size", Unit::kBytes, Kind::kChanged, kNoFlags,
     [](const Disk& disk) { return ValueOf(disk.sector_size); }},
    {"interface", "interface", Unit::kPlain, Kind::kChanged, kNoFlags,
     [](const Disk& disk) { return ValueOf(disk.interface_type); }},
    {"mediaType", "media type", Unit::kPlain, Kind::kChanged, kNoFlags, GeometryValue<&Geometry::media_type>},
    {"cylinders", "cylinders", Unit::kPlain, Kind::kChanged, kOnlyAll, GeometryValue<&Geometry::cylinders>},
    {"tracksPerCylinder", "tracks per cylinder", Unit::kPlain, Kind::kChanged, kOnlyAll,
     GeometryValue<&Geometry::tracks_per_cylinder>},
    {"sectorsPerTrack", "sectors per track", Unit::kPlain, Kind::kChanged, kOnlyAll,
     GeometryValue<&Geometry::sectors_per_track>},
};

constexpr DiskField kTableFields[] = {
    {"partitions", "partitions", Unit::kPlain, Kind::kChanged, kOnlyDescribes | kSilent, PartitionsOf},
};

bool IsConverted(const Disk& before, const Disk& after) {
    return before.style && after.style && before.style != after.style;
}

}  // namespace

std::optional<bool> IsDynamic(const Disk& disk) {
    if (disk.dynamic || !disk.partitions) {
        return disk.dynamic;
    }
    return std::any_of(disk.partitions->begin(), disk.partitions->end(), IsDynamicType);
}

bool TablesAreKnown(const DiskPair& pair, const CompareRules& rules) {
    return rules.same_format || (pair.before->style != Style::kRaw && pair.after->style != Style::kRaw);
}

std::vector<Change> CompareDisk(const DiskPair& pair, const CompareRules& rules) {
    const Disk& before = *pair.before;
    const Disk& after = *pair.after;
    std::vector<Change> changes = CompareFields(std::span<const DiskField>(kFields), before, after, rules);
    if (!IsConverted(before, after)) {
        for (const DiskField& field : kStyleFields) {
            CompareField(field, before, after, rules, changes);
        }
    } else if (TablesAreKnown(pair, rules)) {
        Change conversion;
        conversion.kind = Kind::kConverted;
        conversion.values = Describe(std::span<const DiskField>(kStyleFields), &before, &after);
        changes.push_back(std::move(conversion));
    }
    NameAll(changes, {Object::kDisk, IdOf(before), SubjectOf(pair), pair.guess});
    return changes;
}

Change WholeDisk(Kind kind, const Disk* before, const Disk* after) {
    const Disk& named = before != nullptr ? *before : *after;
    Change change{{Object::kDisk, IdOf(named), SubjectOf(named), {}}, kind, {}};
    for (const std::span<const DiskField> fields :
         {std::span<const DiskField>(kFields), std::span<const DiskField>(kStyleFields),
          std::span<const DiskField>(kTableFields)}) {
        const std::vector<ValuePair> values = Describe(fields, before, after);
        change.values.insert(change.values.end(), values.begin(), values.end());
    }
    return change;
}

}  // namespace documents::diff

#include "documents/diff/partition_changes.h"

#include "documents/diff/naming.h"
#include "documents/diff/partition_identity.h"

#include <algorithm>
#include <iterator>

namespace documents::diff {

namespace {

using PartitionField = Field<Partition>;

// GPT partitions are neither primary nor logical.
Value IsLogical(const Partition& partition) {
    return partition.mbr_type ? Value(partition.kind == PartitionKind::kLogical) : Value();
}

constexpr PartitionField kFieldTable[] = {
    {"number", "", Unit::kPlain, Kind::kRenumbered, kOnlyAll,
     [](const Partition& partition) { return ValueOf(partition.system_number); }},
    {"id", "identifier", Unit::kPlain, Kind::kReplaced, kOnlyDescribes,
     [](const Partition& partition) { return ValueOf(partition.id); }},
    {"start", "at", Unit::kBytes, Kind::kMoved, kDescribes,
     [](const Partition& partition) { return Value(partition.place.start); }},
    {"length", "size", Unit::kBytes, Kind::kResized, kDescribes,
     [](const Partition& partition) { return Value(partition.place.length); }},
    {"mbrType", "type", Unit::kType, Kind::kRetyped, kDescribes,
     [](const Partition& partition) { return ValueOf(partition.mbr_type); }},
    {"gptType", "type", Unit::kPlain, Kind::kRetyped, kDescribes,
     [](const Partition& partition) { return ValueOf(partition.gpt_type); }},
    {"active", "active", Unit::kPlain, Kind::kRole, kNoFlags,
     [](const Partition& partition) { return ValueOf(partition.active); }},
    {"logical", "a logical partition", Unit::kPlain, Kind::kChanged, kNoFlags, IsLogical},
};

constexpr std::span<const PartitionField> kFields = kFieldTable;

Change WholePartition(Kind kind, const Partition* before, const Partition* after) {
    Change change;
    change.kind = kind;
    change.values = Describe(kFields, before, after);
    return change;
}

std::vector<Change> ChangesOf(const PartitionPair& pair, const CompareRules& rules) {
    if (pair.before == nullptr) {
        return {WholePartition(Kind::kAdded, nullptr, pair.after)};
    }
    if (pair.after == nullptr) {
        return {WholePartition(Kind::kRemoved, pair.before, nullptr)};
    }
    if (!pair.by_id && pair.before->id && pair.after->id) {
        return {WholePartition(Kind::kReplaced, pair.before, pair.after)};
    }
    return CompareFields(kFields, *pair.before, *pair.after, rules);
}

}  // namespace

std::vector<Change> ComparePartitions(const DiskPair& disk, const CompareRules& rules) {
    std::vector<Change> all;
    if (!disk.before->partitions || !disk.after->partitions) {
        return all;
    }
    for (const PartitionPair& pair : PairPartitions(*disk.before, *disk.after)) {
        const Partition& named = pair.before != nullptr ? *pair.before : *pair.after;
        std::vector<Change> changes = ChangesOf(pair, rules);
        NameAll(changes,
                {Object::kPartition, IdOf(pair.before != nullptr ? *disk.before : *disk.after, named),
                 SubjectOf(SubjectOf(disk), named), pair.by_id ? std::string_view() : disk.guess});
        std::move(changes.begin(), changes.end(), std::back_inserter(all));
    }
    return all;
}

}  // namespace documents::diff

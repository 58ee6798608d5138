#include "machine/description/partition_table.h"
#include "machine/description/tables.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace machine::rows {
namespace {

// The system's numbers and recognised flags for the entries of a disk.
std::vector<Partition> Numbered(const Disk& disk) {
    Disk numbered;
    numbered.recognizes_all = disk.recognizes_all;
    numbered.partitions = disk.partitions;
    NumberMbrEntries(numbered);
    return numbered.partitions;
}

std::uint32_t SectorsBetween(const Disk& disk, std::uint64_t from, std::uint64_t to) {
    return static_cast<std::uint32_t>((to >= from ? to - from : 0) / disk.bytes_per_sector);
}

// Puts described MBR partitions into the entries of a disk.
class MbrBuilder {
public:
    explicit MbrBuilder(Disk& disk) : disk_(disk) { disk_.partitions.assign(kPrimarySlots, Partition{}); }

    void Add(const DescribedPartition& primary, const JsonCursor& cursor) {
        const std::size_t slot = Slot(primary, cursor.Object());
        taken_[slot] = true;
        disk_.partitions[slot] = Entry(primary, slot, 0);
        if (const auto logical = cursor.Object().Find("logical")) {
            if (!IsContainerType(primary.mbr_type) || disk_.partitions.size() > kPrimarySlots) {
                logical->Refuse("only one extended partition has logical ones");
            }
            AddLogical(primary.logical, primary.offset);
        }
    }

    void Finish() {
        NumberMbrEntries(disk_);
        for (const auto& [entry, given] : given_) {
            Partition& partition = disk_.partitions[entry];
            partition.number = given.given_number.value_or(partition.number);
            partition.recognized = given.given_recognized.value_or(partition.recognized);
        }
    }

private:
    std::size_t Slot(const DescribedPartition& primary, const JsonObject& object) const {
        if (primary.slot) {
            if (*primary.slot == 0 || taken_[*primary.slot - 1]) {
                object.Require("slot").Refuse("must be a free slot from 1 to 4");
            }
            return *primary.slot - 1;
        }
        const auto* free = std::find(taken_.begin(), taken_.end(), false);
        if (free == taken_.end()) {
            object.Refuse("is a fifth primary partition");
        }
        return static_cast<std::size_t>(free - taken_.begin());
    }

    Partition Entry(const DescribedPartition& described, std::size_t entry, std::uint64_t record) {
        auto partition = static_cast<const Partition&>(described);
        partition.style = PARTITION_STYLE_MBR;
        partition.hidden_sectors =
            described.given_hidden.value_or(SectorsBetween(disk_, record, described.offset));
        given_.emplace_back(entry, described);
        return partition;
    }

    // Each logical partition has its own boot record. By default it directly follows the previous logical
    // partition; the first one is at the start of the extended partition.
    void AddLogical(const std::vector<DescribedPartition>& list, std::uint64_t container) {
        std::uint64_t record = container;
        for (const DescribedPartition& described : list) {
            record = described.record.value_or(record);
            const std::size_t entry = disk_.partitions.size();
            const Partition logical = Entry(described, entry, record);
            const std::uint64_t end = logical.offset + logical.length;
            if (entry > kPrimarySlots) {
                Partition& link = disk_.partitions[entry - 3];
                link.mbr_type = PARTITION_EXTENDED;
                link.offset = record;
                link.length = end - record;
                link.hidden_sectors = SectorsBetween(disk_, container, record);
            }
            AppendLogicalGroup(disk_.partitions, logical, Partition{});
            record = end;
        }
    }

    Disk& disk_;
    std::array<bool, kPrimarySlots> taken_{};
    std::vector<std::pair<std::size_t, DescribedPartition>> given_;
};

}  // namespace

void PutMbrPartitions(Disk& disk, const std::vector<DescribedPartition>& list, const JsonCursor& cursor) {
    MbrBuilder builder(disk);
    for (std::size_t i = 0; i < list.size(); ++i) {
        builder.Add(list[i], cursor.Elements()[i]);
    }
    builder.Finish();
}

namespace {

// The described form of an entry: what a builder would not find by itself.
DescribedPartition Described(const Disk& disk, std::size_t entry, std::uint64_t record) {
    const Partition& own = disk.partitions[entry];
    const Partition usual = Numbered(disk)[entry];
    DescribedPartition described{own};
    if (own.number != usual.number) {
        described.given_number = own.number;
    }
    if (own.recognized != usual.recognized) {
        described.given_recognized = own.recognized;
    }
    if (own.hidden_sectors != SectorsBetween(disk, record, own.offset)) {
        described.given_hidden = own.hidden_sectors;
    }
    return described;
}

std::vector<DescribedPartition> DescribedLogical(const Disk& disk, std::uint64_t container) {
    std::vector<DescribedPartition> list;
    std::uint64_t usual = container;
    for (std::size_t entry = kPrimarySlots; entry < disk.partitions.size(); entry += kPrimarySlots) {
        const std::uint64_t record = entry == kPrimarySlots ? container : disk.partitions[entry - 3].offset;
        list.push_back(Described(disk, entry, record));
        if (record != usual) {
            list.back().record = record;
        }
        usual = list.back().offset + list.back().length;
    }
    return list;
}

// The slot of the extended partition that the logical ones belong to: the one that contains the first of
// them, or else the first extended one. None if there are no logical partitions.
std::optional<std::size_t> SlotOfLogical(const Disk& disk) {
    std::optional<std::size_t> first;
    for (std::size_t slot = 0; slot < kPrimarySlots && disk.partitions.size() > kPrimarySlots; ++slot) {
        const Partition& own = disk.partitions[slot];
        if (!IsContainerType(own.mbr_type)) {
            continue;
        }
        if (disk.partitions[kPrimarySlots].offset - own.offset < own.length) {
            return slot;
        }
        first = first.value_or(slot);
    }
    return first;
}

}  // namespace

std::vector<DescribedPartition> DescribedMbr(const Disk& disk) {
    std::vector<DescribedPartition> list;
    const std::optional<std::size_t> slot_of_logical = SlotOfLogical(disk);
    for (std::size_t slot = 0; slot < std::min(kPrimarySlots, disk.partitions.size()); ++slot) {
        const Partition& own = disk.partitions[slot];
        if (own.mbr_type == PARTITION_ENTRY_UNUSED) {
            continue;
        }
        const std::size_t usual = list.size();
        list.push_back(Described(disk, slot, 0));
        if (slot != usual) {
            list.back().slot = static_cast<std::uint32_t>(slot + 1);
        }
        if (slot == slot_of_logical) {
            list.back().logical = DescribedLogical(disk, own.offset);
        }
    }
    return list;
}

}  // namespace machine::rows

#include "machine/description/partition_table.h"
#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

namespace machine::rows {
namespace {

constexpr NamedNumber kMbrTypes[] = {
    {"fat12", 0x01},    {"fat16", 0x06},        {"ntfs", 0x07},     {"fat32", 0x0B}, {"fat32-lba", 0x0C},
    {"extended", 0x05}, {"extended-lba", 0x0F}, {"recovery", 0x27}, {"ldm", 0x42},
};

constexpr std::uint64_t kRequired = 0x0000000000000001;
constexpr std::uint64_t kNoDriveLetter = 0x8000000000000000;

struct GptType {
    const char* name;
    const char* guid;
    const wchar_t* label;  // the name that Windows' own tools give to this type
    std::uint64_t attributes;
};

constexpr GptType kGptTypes[] = {
    {"basic-data", "{ebd0a0a2-b9e5-4433-87c0-68b6b72699c7}", L"Basic data partition", 0},
    {"efi-system", "{c12a7328-f81f-11d2-ba4b-00a0c93ec93b}", L"EFI system partition", kNoDriveLetter},
    {"reserved", "{e3c9e316-0b5c-4db8-817d-f92df00215ae}", L"Microsoft reserved partition", kNoDriveLetter},
    {"recovery", "{de94bba4-06d1-4d40-a16a-bfd50179d6ac}", L"Basic data partition",
     kNoDriveLetter | kRequired},
    {"ldm-metadata", "{5808c8aa-7e8f-42e0-85d2-e1e90434cfb3}", L"LDM metadata partition", 0},
    {"ldm-data", "{af9b60a0-1431-4f62-bc68-3311714a69ad}", L"LDM data partition", 0},
};

const GptType* FindGptType(const GUID& type) {
    const auto* known =
        std::find_if(std::begin(kGptTypes), std::end(kGptTypes),
                     [&](const GptType& candidate) { return IsEqualGUID(type, *ParseGuid(candidate.guid)); });
    return known == std::end(kGptTypes) ? nullptr : known;
}

Kind<std::uint32_t> MbrType() {
    Kind<std::uint32_t> named = Named(kMbrTypes);
    const std::string name = named.name + " from 1 to 255";
    return Checked<std::uint32_t>(name, std::move(named), [](const std::uint32_t& type) {
        return type == 0 || type > 0xFF ? "must be a partition type from 0x01 to 0xFF" : nullptr;
    });
}

Kind<GUID> GptTypeGuid() {
    std::string names;
    for (const GptType& type : kGptTypes) {
        names += "`" + std::string(type.name) + "`, ";
    }
    return {names.substr(0, names.size() - 2) + " or a GUID",
            [](const JsonCursor& cursor, const Place&) {
                const std::string name = cursor.Utf8();
                for (const GptType& type : kGptTypes) {
                    if (name == type.name) {
                        return *ParseGuid(type.guid);
                    }
                }
                return cursor.Guid();
            },
            [](const GUID& guid, const Place&) {
                const GptType* known = FindGptType(guid);
                return Json(known == nullptr ? GuidText(guid) : known->name);
            }};
}

Kind<std::wstring> GptName() {
    return Checked<std::wstring>("text of at most 36 characters", Text(), [](const std::wstring& name) {
        return name.size() > 36 ? "must not be longer than 36 characters" : nullptr;
    });
}

Kind<std::vector<DescribedPartition>> PartitionList(std::initializer_list<Table<DescribedPartition>> tables) {
    return List("list of partitions", Object("", Joined(tables)));
}

// All partitions of an MBR disk.
Table<DescribedPartition> MbrRows() {
    return {
        {"type", &DescribedPartition::mbr_type, MbrType(), Required{}, ""},
        {"active", &DescribedPartition::active, Flag(), ""},
        Row<DescribedPartition>("hiddenSectors", &DescribedPartition::given_hidden, Number(), "")
            .Otherwise("sectors between the record that describes the partition and its start"),
        {"id", &DescribedPartition::id, Guid(),
         Derived{"zero", [](const DescribedPartition&, const Place&) { return GUID{}; }}, ""},
        Row<DescribedPartition>("recognized", &DescribedPartition::given_recognized, Flag(), "")
            .Otherwise("see `recognition` of the disk"),
    };
}

Table<DescribedPartition> LogicalRows() {
    return {
        Row<DescribedPartition>("record", &DescribedPartition::record, ByteCount(),
                                "only of a logical partition: the offset of its boot record on the disk")
            .Otherwise("the start of the extended partition, or the end of the previous logical partition")};
}

const Kind<std::vector<DescribedPartition>>& LogicalPartitions() {
    static const auto kind = PartitionList({PartitionTable(), MbrRows(), LogicalRows()});
    return kind;
}

Table<DescribedPartition> PrimaryRows() {
    return {
        Row<DescribedPartition>("slot", &DescribedPartition::slot, NumberUpTo(kPrimarySlots),
                                "1 to 4: the slot in the table")
            .Otherwise("the first free one"),
        {"logical", &DescribedPartition::logical, LogicalPartitions(), "of at most one extended partition"},
    };
}

const Kind<std::vector<DescribedPartition>>& MbrPartitions() {
    static const auto kind = PartitionList({PartitionTable(), MbrRows(), PrimaryRows()});
    return kind;
}

const Kind<std::vector<DescribedPartition>>& GptPartitions() {
    static const auto kind = PartitionList({PartitionTable(), GptTable()});
    return kind;
}

}  // namespace

const Table<Partition>& SuperFloppyTable() {
    static const Table<Partition> table = {
        {"type", &Partition::mbr_type, MbrType(),
         Derived{"4", [](const Partition&, const Place&) { return std::uint8_t{PARTITION_FAT_16}; }},
         "as of an MBR partition"},
        {"number", &Partition::number, NumberUpTo(1), ""},
        {"id", &Partition::id, Guid(), Derived{"zero", [](const Partition&, const Place&) { return GUID{}; }},
         ""},
    };
    return table;
}

const Table<DescribedPartition>& PartitionTable() {
    static const Table<DescribedPartition> table = {
        {"offset", &DescribedPartition::offset, ByteCount(), Required{}, "from the start of the disk"},
        {"size", &DescribedPartition::length, ByteCount(), Required{}, ""},
        {"rewrite", &DescribedPartition::rewrite, Flag(), ""},
        {"service", &DescribedPartition::service, Flag(), "`IsServicePartition`, which current systems have"},
        Row<DescribedPartition>("number", &DescribedPartition::given_number, Number(), "")
            .Otherwise("assigned as Windows does"),
    };
    return table;
}

const Table<DescribedPartition>& MbrTable() {
    static const auto table = Joined({MbrRows(), PrimaryRows(), LogicalRows()});
    return table;
}

const Table<DescribedPartition>& GptTable() {
    static const Table<DescribedPartition> table = {
        {"type", &DescribedPartition::gpt_type, GptTypeGuid(), Required{}, ""},
        {"id", &DescribedPartition::id, Guid(),
         Derived{"derived from the disk id and the number",
                 [](const DescribedPartition&, const Place& place) {
                     return DerivedGuid(GuidText(place.disk->disk_id) + "/" +
                                        std::to_string(place.position + 1));
                 }},
         ""},
        {"name", &DescribedPartition::gpt_name, GptName(),
         Derived{"the usual one for the type",
                 [](const DescribedPartition& partition, const Place&) {
                     const GptType* known = FindGptType(partition.gpt_type);
                     return std::wstring(known == nullptr ? L"" : known->label);
                 }},
         ""},
        {"attributes", &DescribedPartition::gpt_attributes, LongNumber(),
         Derived{"the usual ones for the type",
                 [](const DescribedPartition& partition, const Place&) {
                     const GptType* known = FindGptType(partition.gpt_type);
                     return known == nullptr ? std::uint64_t{0} : known->attributes;
                 }},
         ""},
    };
    return table;
}

void ReadPartitions(Disk& disk, const JsonCursor& cursor, const Place& outer) {
    Place place = outer;
    place.disk = &disk;
    if (disk.style == PARTITION_STYLE_MBR) {
        PutMbrPartitions(disk, MbrPartitions().read(cursor, place), cursor);
        return;
    }
    disk.partitions.clear();
    for (const DescribedPartition& described : GptPartitions().read(cursor, place)) {
        disk.partitions.push_back(described);
        Partition& partition = disk.partitions.back();
        partition.style = PARTITION_STYLE_GPT;
        partition.number =
            described.given_number.value_or(static_cast<std::uint32_t>(disk.partitions.size()));
    }
}

Json WritePartitions(const Disk& disk, const Place& outer) {
    Place place = outer;
    place.disk = &disk;
    if (disk.style == PARTITION_STYLE_MBR) {
        return MbrPartitions().write(DescribedMbr(disk), place);
    }
    std::vector<DescribedPartition> list;
    for (const Partition& partition : disk.partitions) {
        list.push_back({partition});
        if (partition.number != list.size()) {
            list.back().given_number = partition.number;
        }
    }
    return GptPartitions().write(list, place);
}

std::string PartitionFault(const Disk& disk) {
    std::vector<const Partition*> used;
    for (const Partition& partition : disk.partitions) {
        if (partition.length == 0) {
            continue;
        }
        if (partition.offset > disk.size || partition.length > disk.size - partition.offset) {
            return "the partition at " + std::to_string(partition.offset) + " ends beyond the disk";
        }
        if (partition.style != PARTITION_STYLE_MBR || !IsContainerType(partition.mbr_type)) {
            used.push_back(&partition);
        }
    }
    std::sort(used.begin(), used.end(),
              [](const Partition* left, const Partition* right) { return left->offset < right->offset; });
    for (std::size_t i = 1; i < used.size(); ++i) {
        if (used[i - 1]->offset + used[i - 1]->length > used[i]->offset) {
            return "the partitions at " + std::to_string(used[i - 1]->offset) + " and " +
                   std::to_string(used[i]->offset) + " overlap";
        }
    }
    return {};
}

}  // namespace machine::rows

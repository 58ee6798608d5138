#include "machine/description/parsing.h"
#include "machine/description/partition_table.h"
#include "machine/description/text.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace machine::parsing {
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
constexpr std::size_t kMaxGptName = 36;

void Place(JsonObject& object, Partition& partition) {
    partition.offset = object.Require("offset").ByteCount();
    partition.length = object.Require("size").ByteCount();
    partition.rewrite = object.Bool("rewrite", false);
}

std::uint8_t MbrType(const JsonCursor& cursor) {
    const std::uint32_t number = NamedOrNumber(cursor, kMbrTypes);
    if (number == 0 || number > 0xFF) {
        cursor.Refuse("must be a partition type from 0x01 to 0xFF");
    }
    return static_cast<std::uint8_t>(number);
}

Partition MbrPartition(JsonObject& object, std::uint32_t bytes_per_sector, std::uint64_t record_offset) {
    Partition partition;
    partition.style = PARTITION_STYLE_MBR;
    Place(object, partition);
    partition.mbr_type = MbrType(object.Require("type"));
    partition.active = object.Bool("active", false);
    const std::uint64_t distance = partition.offset >= record_offset ? partition.offset - record_offset : 0;
    partition.hidden_sectors =
        object.Number32("hiddenSectors", static_cast<std::uint32_t>(distance / bytes_per_sector));
    return partition;
}

// Values from the description that replace those set by NumberMbrEntries.
struct Override {
    std::size_t entry;
    std::optional<std::uint32_t> number;
    std::optional<bool> recognized;
};

class MbrBuilder {
public:
    explicit MbrBuilder(Disk& disk) : disk_(disk) { disk_.partitions.assign(kPrimarySlots, Partition{}); }

    void Primary(const JsonCursor& cursor) {
        JsonObject object = cursor.Object();
        const Partition partition = MbrPartition(object, disk_.bytes_per_sector, 0);
        const std::size_t slot = Slot(object);
        disk_.partitions[slot] = partition;
        taken_[slot] = true;
        Remember(object, slot);
        if (const auto logical = object.Find("logical")) {
            if (!IsContainerType(partition.mbr_type) || disk_.partitions.size() > kPrimarySlots) {
                logical->Refuse("only one extended partition has logical ones");
            }
            Logical(logical->Elements(), partition);
        }
        object.RefuseOthers();
    }

    void Finish() {
        NumberMbrEntries(disk_);
        for (const Override& given : overrides_) {
            Partition& partition = disk_.partitions[given.entry];
            partition.number = given.number.value_or(partition.number);
            partition.recognized = given.recognized.value_or(partition.recognized);
        }
    }

private:
    std::size_t Slot(JsonObject& object) {
        if (const auto slot = object.Find("slot")) {
            const std::uint64_t number = slot->Number(kPrimarySlots);
            if (number == 0 || taken_[number - 1]) {
                slot->Refuse("must be a free slot from 1 to 4");
            }
            return number - 1;
        }
        const auto* free = std::find(taken_.begin(), taken_.end(), false);
        if (free == taken_.end()) {
            object.Refuse("is a fifth primary partition");
        }
        return static_cast<std::size_t>(free - taken_.begin());
    }

    void Remember(JsonObject& object, std::size_t entry) {
        Override given{entry, std::nullopt, std::nullopt};
        if (const auto number = object.Find("number")) {
            given.number = number->Number32();
        }
        if (const auto recognized = object.Find("recognized")) {
            given.recognized = recognized->Bool();
        }
        overrides_.push_back(given);
    }

    // Each logical partition has its own boot record: at "record" or, by default, directly after the
    // previous logical partition; the first one at the start of the extended partition.
    void Logical(const std::vector<JsonCursor>& elements, const Partition& container) {
        std::uint64_t record = container.offset;
        for (const JsonCursor& element : elements) {
            JsonObject object = element.Object();
            record = object.ByteCount("record", record);
            const Partition logical = MbrPartition(object, disk_.bytes_per_sector, record);
            const std::size_t entry = disk_.partitions.size();
            Remember(object, entry);
            object.RefuseOthers();
            if (entry > kPrimarySlots) {
                Partition& link = disk_.partitions[entry - 3];
                link.mbr_type = PARTITION_EXTENDED;
                link.offset = record;
                link.length = logical.offset + logical.length - record;
                link.hidden_sectors =
                    static_cast<std::uint32_t>((record - container.offset) / disk_.bytes_per_sector);
            }
            AppendLogicalGroup(disk_.partitions, logical, Partition{});
            record = logical.offset + logical.length;
        }
    }

    Disk& disk_;
    std::array<bool, kPrimarySlots> taken_{};
    std::vector<Override> overrides_;
};

Partition GptPartition(const JsonCursor& cursor, const Disk& disk, std::uint32_t number) {
    JsonObject object = cursor.Object();
    Partition partition;
    partition.style = PARTITION_STYLE_GPT;
    Place(object, partition);
    const JsonCursor type = object.Require("type");
    const std::string name = type.Utf8();
    const auto* known =
        std::find_if(std::begin(kGptTypes), std::end(kGptTypes), [&](const GptType& candidate) {
            const auto guid = ParseGuid(name);
            return name == candidate.name || (guid && IsEqualGUID(*guid, *ParseGuid(candidate.guid)));
        });
    const bool is_known = known != std::end(kGptTypes);
    partition.gpt_type = is_known ? *ParseGuid(known->guid) : type.Guid();
    const auto id = object.Find("id");
    partition.gpt_id = id ? id->Guid() : DerivedGuid(GuidText(disk.disk_id) + "/" + std::to_string(number));
    partition.gpt_attributes = object.Number("attributes", is_known ? known->attributes : 0);
    partition.gpt_name = object.Text("name", is_known ? known->label : L"");
    if (partition.gpt_name.size() > kMaxGptName) {
        object.Require("name").Refuse("must not be longer than 36 characters");
    }
    partition.number = object.Number32("number", number);
    object.RefuseOthers();
    return partition;
}

bool IsContainer(const Partition& partition) {
    return partition.style == PARTITION_STYLE_MBR && IsContainerType(partition.mbr_type);
}

}  // namespace

void Partitions(const JsonCursor& cursor, Disk& disk) {
    const std::vector<JsonCursor> elements = cursor.Elements();
    if (disk.style == PARTITION_STYLE_MBR) {
        MbrBuilder builder(disk);
        for (const JsonCursor& element : elements) {
            builder.Primary(element);
        }
        builder.Finish();
        return;
    }
    disk.partitions.clear();
    for (const JsonCursor& element : elements) {
        disk.partitions.push_back(
            GptPartition(element, disk, static_cast<std::uint32_t>(disk.partitions.size() + 1)));
    }
}

void SuperFloppy(const JsonCursor& cursor, Disk& disk) {
    JsonObject object = cursor.Object();
    Partition whole;
    whole.length = disk.size;
    whole.recognized = true;
    const auto type = object.Find("type");
    whole.mbr_type = type ? MbrType(*type) : PARTITION_FAT_16;
    const auto number = object.Find("number");
    whole.number = number ? static_cast<std::uint32_t>(number->Number(1)) : 0;
    object.RefuseOthers();
    disk.partitions.assign(1, whole);
}

void CheckPartitions(const JsonCursor& cursor, const Disk& disk) {
    std::vector<const Partition*> used;
    for (const Partition& partition : disk.partitions) {
        if (partition.length == 0) {
            continue;
        }
        if (partition.offset > disk.size || partition.length > disk.size - partition.offset) {
            cursor.Refuse("the partition at " + std::to_string(partition.offset) + " ends beyond the disk");
        }
        if (!IsContainer(partition)) {
            used.push_back(&partition);
        }
    }
    std::sort(used.begin(), used.end(),
              [](const Partition* left, const Partition* right) { return left->offset < right->offset; });
    for (std::size_t i = 1; i < used.size(); ++i) {
        if (used[i - 1]->offset + used[i - 1]->length > used[i]->offset) {
            cursor.Refuse("the partitions at " + std::to_string(used[i - 1]->offset) + " and " +
                          std::to_string(used[i]->offset) + " overlap");
        }
    }
}

}  // namespace machine::parsing

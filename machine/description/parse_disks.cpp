#include "machine/description/disk_image.h"
#include "machine/description/parsing.h"
#include "machine/description/partition_table.h"
#include "machine/description/text.h"

#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace machine::parsing {
namespace {

constexpr NamedNumber kStyles[] = {
    {"mbr", PARTITION_STYLE_MBR}, {"gpt", PARTITION_STYLE_GPT}, {"raw", PARTITION_STYLE_RAW}};
constexpr NamedNumber kMediaTypes[] = {{"unknown", 0}, {"removable", 11}, {"fixed", 12}};
constexpr NamedNumber kDetectionTypes[] = {{"none", 0}, {"int13", 1}, {"exint13", 2}};
constexpr NamedNumber kRecognitions[] = {{"type", 0}, {"used", 1}};
constexpr std::uint32_t kSectorSizes[] = {512, 1024, 2048, 4096};
constexpr std::uint32_t kSuperFloppySignature = 1;

std::uint32_t SectorSize(JsonObject& object) {
    const auto size = object.Find("bytesPerSector");
    if (!size) {
        return 512;
    }
    const std::uint32_t number = size->Number32();
    for (const std::uint32_t possible : kSectorSizes) {
        if (number == possible) {
            return number;
        }
    }
    size->Refuse("must be 512, 1024, 2048 or 4096");
}

WORD Word(JsonObject& object, const char* key) {
    const auto value = object.Find(key);
    return value ? static_cast<WORD>(value->Number(0xFFFF)) : WORD{0};
}

void Detection(const JsonCursor& cursor, Disk& disk) {
    JsonObject object = cursor.Object();
    disk.detection_type = NamedOrNumber(object.Require("type"), kDetectionTypes);
    disk.int13.DriveSelect = Word(object, "driveSelect");
    disk.int13.MaxCylinders = object.Number32("maxCylinders", 0);
    disk.int13.SectorsPerTrack = Word(object, "sectorsPerTrack");
    disk.int13.MaxHeads = Word(object, "maxHeads");
    disk.int13.NumberDrives = Word(object, "numberDrives");
    disk.ex_int13.ExBufferSize = Word(object, "exBufferSize");
    disk.ex_int13.ExFlags = Word(object, "exFlags");
    disk.ex_int13.ExCylinders = object.Number32("exCylinders", 0);
    disk.ex_int13.ExHeads = object.Number32("exHeads", 0);
    disk.ex_int13.ExSectorsPerTrack = object.Number32("exSectorsPerTrack", 0);
    disk.ex_int13.ExSectorsPerDrive = object.Number("exSectorsPerDrive", 0);
    disk.ex_int13.ExSectorSize = Word(object, "exSectorSize");
    disk.ex_int13.ExReserved = Word(object, "exReserved");
    object.RefuseOthers();
}

void Geometry(JsonObject& disk_object, Disk& disk) {
    if (const auto geometry = disk_object.Find("geometry")) {
        JsonObject object = geometry->Object();
        disk.tracks_per_cylinder = object.Number32("tracksPerCylinder", disk.tracks_per_cylinder);
        disk.sectors_per_track = object.Number32("sectorsPerTrack", disk.sectors_per_track);
        disk.cylinders = object.Number("cylinders", 0);
        object.RefuseOthers();
    }
    const std::uint64_t cylinder =
        static_cast<std::uint64_t>(disk.tracks_per_cylinder) * disk.sectors_per_track * disk.bytes_per_sector;
    if (disk.cylinders == 0 && cylinder != 0) {
        disk.cylinders = disk.size / cylinder;
    }
}

constexpr const char* kTableKeys[] = {"style",        "signature",         "checksum",
                                      "diskId",       "partitions",        "startingUsableOffset",
                                      "usableLength", "maxPartitionCount", "unchecked"};

// Refuses the keys of a partition table, but not `allowed`, beside the key `other`.
void RefuseTableKeys(JsonObject& object, const char* other, const std::string& allowed) {
    for (const char* key : kTableKeys) {
        const auto given = key == allowed ? std::nullopt : object.Find(key);
        if (given) {
            given->Refuse("cannot be given with \"" + std::string(other) + "\", which says it");
        }
    }
}

void UseImage(JsonObject& object, const JsonCursor& cursor, Disk& disk,
              const std::filesystem::path& directory) {
    RefuseTableKeys(object, "image", "");
    for (const char* key : {"size", "blank", "superFloppy"}) {
        if (const auto given = object.Find(key)) {
            given->Refuse("cannot be given with \"image\", which says it");
        }
    }
    Image image;
    image.file = directory / cursor.Text();
    image.writable = object.Bool("writable", false);
    if (const auto copy = object.Find("writeTo")) {
        if (image.writable) {
            copy->Refuse("cannot be given with \"writable\"");
        }
        image.write_to = directory / copy->Text();
    }
    disk.image = std::move(image);
    try {
        ReadDiskImage(disk);
    } catch (const std::runtime_error& error) {
        cursor.Refuse(error.what());
    }
}

std::uint32_t Style(JsonObject& object) {
    if (const auto style = object.Find("style")) {
        return NamedOrNumber(*style, kStyles);
    }
    if (object.Has("diskId")) {
        return PARTITION_STYLE_GPT;
    }
    return object.Has("signature") ? PARTITION_STYLE_MBR : PARTITION_STYLE_RAW;
}

void Table(JsonObject& object, Disk& disk) {
    disk.blank = object.Bool("blank", false);
    if (disk.blank) {
        RefuseTableKeys(object, "blank", "");
        disk.style = PARTITION_STYLE_MBR;
        return;
    }
    if (const auto floppy = object.Find("superFloppy")) {
        RefuseTableKeys(object, "superFloppy", "signature");
        disk.style = PARTITION_STYLE_MBR;
        disk.signature = object.Number32("signature", kSuperFloppySignature);
        SuperFloppy(*floppy, disk);
        return;
    }
    disk.style = Style(object);
    const std::string seed = "disk " + std::to_string(disk.index);
    const auto partitions = object.Find("partitions");
    if (disk.style == PARTITION_STYLE_GPT) {
        const auto id = object.Find("diskId");
        disk.disk_id = id ? id->Guid() : DerivedGuid(seed);
        disk.max_partition_count = object.Number32("maxPartitionCount", disk.max_partition_count);
        SetUsableRange(disk);
        disk.starting_usable_offset = object.ByteCount("startingUsableOffset", disk.starting_usable_offset);
        disk.usable_length = object.ByteCount("usableLength", disk.usable_length);
    } else if (disk.style == PARTITION_STYLE_MBR) {
        disk.signature = object.Number32("signature", DerivedNumber(seed));
        disk.checksum = object.Number32("checksum", 0);
        disk.partitions.assign(kPrimarySlots, Partition{});
    } else if (partitions) {
        partitions->Refuse("only an mbr or gpt disk has partitions; give \"style\"");
    }
    if (partitions) {
        Partitions(*partitions, disk);
    }
    if (!object.Bool("unchecked", false) && partitions) {
        CheckPartitions(*partitions, disk);
    }
}

Disk DiskOf(const JsonCursor& cursor, const std::filesystem::path& directory) {
    JsonObject object = cursor.Object();
    Disk disk;
    disk.index = object.Require("index").Number32();
    disk.bytes_per_sector = SectorSize(object);
    disk.offline = object.Bool("offline", false);
    if (const auto recognition = object.Find("recognition")) {
        disk.recognizes_all = NamedOrNumber(*recognition, kRecognitions) != 0;
    }
    if (const auto image = object.Find("image")) {
        UseImage(object, *image, disk, directory);
    } else {
        disk.size = object.Require("size").ByteCount();
        Table(object, disk);
    }
    if (const auto media = object.Find("mediaType")) {
        disk.media_type = NamedOrNumber(*media, kMediaTypes);
    }
    if (const auto detection = object.Find("detection")) {
        Detection(*detection, disk);
    }
    Geometry(object, disk);
    if (const auto wmi = object.Find("wmi")) {
        if (wmi->is_bool()) {
            disk.hidden_from_wmi = !wmi->Bool();
        } else {
            disk.wmi = Properties(*wmi);
        }
    }
    disk.open_for_writing_error = object.Number32("openForWritingError", 0);
    disk.errors = ErrorsOf(object, CallScope::kDisk);
    object.RefuseOthers();
    return disk;
}

}  // namespace

std::vector<Disk> Disks(const JsonCursor& cursor, const std::filesystem::path& directory) {
    std::vector<Disk> disks;
    std::set<std::uint32_t> indexes;
    for (const JsonCursor& element : cursor.Elements()) {
        disks.push_back(DiskOf(element, directory));
        if (!indexes.insert(disks.back().index).second) {
            element.Object().Require("index").Refuse("is the index of another disk too");
        }
    }
    return disks;
}

}  // namespace machine::parsing

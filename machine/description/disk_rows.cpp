#include "machine/description/disk_image.h"
#include "machine/description/partition_table.h"
#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace machine::rows {
namespace {

constexpr NamedNumber kStyles[] = {
    {"mbr", PARTITION_STYLE_MBR}, {"gpt", PARTITION_STYLE_GPT}, {"raw", PARTITION_STYLE_RAW}};
constexpr NamedNumber kMediaTypes[] = {{"unknown", 0}, {"removable", 11}, {"fixed", 12}};
constexpr NamedNumber kRecognitions[] = {{"type", 0}, {"used", 1}};
constexpr std::uint32_t kSuperFloppySignature = 1;

std::string Seed(const Disk& disk) {
    return "disk " + std::to_string(disk.index);
}

const char* SectorSizeFault(const std::uint32_t& size) {
    constexpr std::uint32_t kSizes[] = {512, 1024, 2048, 4096};
    const bool possible = std::find(std::begin(kSizes), std::end(kSizes), size) != std::end(kSizes);
    return possible ? nullptr : "must be 512, 1024, 2048 or 4096";
}

// Reasons to refuse a key.

std::string NotWith(const char* other) {
    return "cannot be given with \"" + std::string(other) + "\", which says it";
}

std::string NotOfImage(const Disk& disk, const Place&) {
    return disk.image ? NotWith("image") : "";
}

std::string NotOfBlank(const Disk& disk, const Place& place) {
    return disk.blank ? NotWith("blank") : NotOfImage(disk, place);
}

std::string NotOfTable(const Disk& disk, const Place& place) {
    return IsSuperFloppy(disk) ? NotWith("superFloppy") : NotOfBlank(disk, place);
}

std::string OnlyOfMbr(const Disk& disk, const Place& place) {
    const std::string reason = NotOfTable(disk, place);
    return reason.empty() && disk.style != PARTITION_STYLE_MBR ? "belongs to an mbr disk" : reason;
}

std::string OnlyOfMbrOrSuperFloppy(const Disk& disk, const Place& place) {
    return IsSuperFloppy(disk) ? std::string() : OnlyOfMbr(disk, place);
}

std::string OnlyOfGpt(const Disk& disk, const Place& place) {
    const std::string reason = NotOfTable(disk, place);
    return reason.empty() && disk.style != PARTITION_STYLE_GPT ? "belongs to a gpt disk" : reason;
}

std::string OnlyWithStyle(const Disk& disk, const Place& place) {
    const bool has_style = disk.style == PARTITION_STYLE_MBR || disk.style == PARTITION_STYLE_GPT;
    const std::string reason = NotOfTable(disk, place);
    return reason.empty() && !has_style ? "only an mbr or gpt disk has partitions; give \"style\"" : reason;
}

std::string OnlyOfImage(const Disk& disk, const Place&) {
    return disk.image ? "" : "needs \"image\"";
}

// A file, relative to the folder of the description.
Kind<std::filesystem::path> Path() {
    return {
        "text", [](const JsonCursor& cursor, const Place& place) { return *place.directory / cursor.Text(); },
        [](const std::filesystem::path& path, const Place& place) {
            const bool relative = !place.directory->empty();
            const std::filesystem::path shown = relative ? path.lexically_proximate(*place.directory) : path;
            return Text().write(shown.generic_wstring(), place);
        }};
}

void TakeImage(Disk& disk, const std::filesystem::path& file, const JsonCursor& cursor) {
    disk.image = Image{};
    disk.image->file = file;
    try {
        ReadDiskImage(disk);
    } catch (const std::runtime_error& error) {
        cursor.Refuse(error.what());
    }
}

Table<Disk> ImageRows() {
    return {
        {"image", Path(), "none", "a raw disk image, relative to the description",
         [](const Disk& disk, const Place&) {
             return disk.image ? std::optional(disk.image->file) : std::nullopt;
         },
         [](Disk& disk, const std::filesystem::path& file, const JsonCursor& cursor, Place&) {
             TakeImage(disk, file, cursor);
         }},
        Row<Disk>(
            "writable", Flag(), "false", "true: changes are written to the image",
            [](const Disk& disk, const Place&) { return disk.image->writable; },
            [](Disk& disk, bool value, const JsonCursor&, Place&) { disk.image->writable = value; })
            .Unless(OnlyOfImage),
        Row<Disk>(
            "writeTo", Path(), "none", "changes are written to a copy of the image, made at the first change",
            [](const Disk& disk, const Place&) { return disk.image->write_to; },
            [](Disk& disk, const std::filesystem::path& file, const JsonCursor&, Place&) {
                disk.image->write_to = file;
            })
            .Unless([](const Disk& disk, const Place& place) {
                return disk.image && disk.image->writable ? "cannot be given with \"writable\""
                                                          : OnlyOfImage(disk, place);
            }),
    };
}

std::uint32_t DefaultStyle(const Disk&, const Place& place) {
    const auto given = [&](const char* key) { return place.object != nullptr && place.object->Has(key); };
    if (given("diskId")) {
        return PARTITION_STYLE_GPT;
    }
    return static_cast<std::uint32_t>(given("signature") ? PARTITION_STYLE_MBR : PARTITION_STYLE_RAW);
}

// The default of the usable range.
Disk WithUsableRange(Disk disk) {
    SetUsableRange(disk);
    return disk;
}

// Instead of a partition table.
Table<Disk> TablelessRows() {
    return {
        Row<Disk>(
            "blank", Flag(), "false",
            "true: no table, reported as style 0 without entries and, in the geometry, with a zeroed "
            "partition "
            "record (size 0). `style` `raw` is the other form: style 2 in both",
            [](const Disk& disk, const Place&) { return disk.blank; },
            [](Disk& disk, bool value, const JsonCursor&, Place&) {
                disk.blank = value;
                disk.style = static_cast<std::uint32_t>(value ? PARTITION_STYLE_MBR : PARTITION_STYLE_RAW);
            })
            .Unless(NotOfImage),
        Row<Disk>(
            "superFloppy",
            Object("[file system without a table](#a-file-system-without-a-table)", SuperFloppyTable()),
            "none",
            "one file system without a table, reported as an MBR layout with one entry that covers the disk. "
            "`signature` can be given",
            [](const Disk& disk, const Place&) {
                return IsSuperFloppy(disk) ? std::optional(disk.partitions.front()) : std::nullopt;
            },
            [](Disk& disk, Partition whole, const JsonCursor&, Place&) {
                whole.length = disk.size;
                whole.recognized = true;
                disk.style = PARTITION_STYLE_MBR;
                disk.partitions = {whole};
            })
            .Unless(NotOfBlank),
    };
}

Table<Disk> StyleRows() {
    const auto of_mbr = [](Row<Disk> row) { return std::move(row).Unless(OnlyOfMbrOrSuperFloppy); };
    const auto of_gpt = [](Row<Disk> row) { return std::move(row).Unless(OnlyOfGpt); };
    return {
        Row<Disk>("style", &Disk::style, Named(kStyles),
                  Derived{"`gpt` with a `diskId`, `mbr` with a `signature`, else `raw`", DefaultStyle}, "")
            .Unless(NotOfTable),
        of_mbr({"signature", &Disk::signature, Number(),
                Derived{"derived from the index, not 0; 1 for a `superFloppy`",
                        [](const Disk& disk, const Place&) {
                            return IsSuperFloppy(disk) ? kSuperFloppySignature : DerivedNumber(Seed(disk));
                        }},
                "MBR"}),
        of_mbr({"checksum", &Disk::checksum, Number(), "MBR: in the geometry"}),
        of_mbr({"layoutChecksum", &Disk::layout_checksum, Number(), "MBR: in the layout"}),
        of_gpt({"diskId", &Disk::disk_id, Guid(),
                Derived{"derived from the index",
                        [](const Disk& disk, const Place&) { return DerivedGuid(Seed(disk)); }},
                "GPT"}),
        of_gpt({"maxPartitionCount", &Disk::max_partition_count, Number(), "GPT"}),
        of_gpt(
            {"startingUsableOffset", &Disk::starting_usable_offset, ByteCount(),
             Derived{
                 "from the size and the number of entries: 17408 with 512-byte sectors and 128 entries",
                 [](const Disk& disk, const Place&) { return WithUsableRange(disk).starting_usable_offset; }},
             "GPT"}),
        of_gpt({"usableLength", &Disk::usable_length, ByteCount(),
                Derived{"likewise: the size minus 34304",
                        [](const Disk& disk, const Place&) { return WithUsableRange(disk).usable_length; }},
                "GPT"}),
    };
}

Table<Disk> PartitionRows() {
    return {
        Row<Disk>(
            "unchecked", Flag(), "false", "true: partitions may overlap or extend beyond the disk",
            [](const Disk& disk, const Place&) { return !PartitionFault(disk).empty(); },
            [](Disk&, bool value, const JsonCursor&, Place& place) { place.unchecked = value; })
            .Unless(NotOfTable),
        Row<Disk>(
            "partitions", "list of [partitions](#partitions)", "none", "MBR and GPT",
            [](Disk& disk, const JsonCursor& cursor, Place& place) {
                ReadPartitions(disk, cursor, place);
                const std::string fault = place.unchecked ? "" : PartitionFault(disk);
                if (!fault.empty()) {
                    cursor.Refuse(fault);
                }
            },
            [](const Disk& disk, const Place& place) {
                const Json list = WritePartitions(disk, place);
                return list.empty() ? std::nullopt : std::optional(list);
            },
            [](Disk& disk, const Place&) {
                disk.partitions.assign(disk.style == PARTITION_STYLE_MBR ? kPrimarySlots : 0, Partition{});
            })
            .Unless(OnlyWithStyle),
    };
}

Table<Disk> DeviceRows() {
    return {
        {"openForReadingError", &Disk::open_for_reading_error, Number(),
         "the error with which opening it for reading or writing fails, but not with no access; 0: it does "
         "not"},
        {"openForWritingError", &Disk::open_for_writing_error, Number(),
         "the error with which opening it for writing fails; 0: it does not"},
        {"mediaType", &Disk::media_type, Named(kMediaTypes), ""},
        Group<Disk>("detection", "[detection record](#detection-record)", "type `none`", "",
                    DetectionTable()),
        Group<Disk>("geometry", "[geometry](#geometry)", "derived", "", GeometryTable()),
        {"wmi", "false, or an object of [properties](#wmi)", "listed",
         "false: WMI does not list the disk. The properties override the derived ones",
         [](Disk& disk, const JsonCursor& cursor, Place& place) {
             disk.hidden_from_wmi = cursor.is_bool() && !cursor.Bool();
             disk.wmi = cursor.is_bool() ? WmiInstance{} : Properties().read(cursor, place);
         },
         [](const Disk& disk, const Place& place) {
             return disk.hidden_from_wmi ? std::optional(Json(false))
                    : disk.wmi.empty()   ? std::nullopt
                                         : std::optional(Properties().write(disk.wmi, place));
         }},
    };
}

}  // namespace

bool IsSuperFloppy(const Disk& disk) {
    return !disk.image && !disk.blank && disk.style == PARTITION_STYLE_MBR && disk.partitions.size() == 1;
}

std::wstring UsualDiskDevice(std::uint32_t index) {
    const std::wstring number = std::to_wstring(index);
    return L"\\Device\\Harddisk" + number + L"\\DR" + number;
}

const Table<Disk>& DiskTable() {
    static const Table<Disk> table = Joined<Disk>(
        {{{"index", &Disk::index, Number(), Required{}, "the N of `\\\\.\\PhysicalDrive`N; unique"},
          {"device", &Disk::device, DeviceName(),
           Derived{"`\\Device\\Harddisk`N`\\DR`N",
                   [](const Disk& disk, const Place&) { return UsualDiskDevice(disk.index); }},
           ""},
          {"bytesPerSector", &Disk::bytes_per_sector,
           Checked("512, 1024, 2048 or 4096", Number(), SectorSizeFault), ""},
          {"geometryBytes", &Disk::geometry_bytes, Number(),
           "what the extended geometry control returns at most; less than 112 without a detection record"},
          {"offline", &Disk::offline, Flag(), "true: the older layout control fails with error 21"},
          {"recognition", &Disk::recognizes_all, Named(kRecognitions),
           "`type`: MBR entries are recognised by their type; `used`: every used entry that is no "
           "container"}},
         ImageRows(),
         {Row<Disk>("size", &Disk::size, ByteCount(), Required{}, "not with `image`").Unless(NotOfImage)},
         TablelessRows(),
         StyleRows(),
         PartitionRows(),
         DeviceRows(),
         ErrorRows<Disk>(CallScope::kDisk)});
    return table;
}

Kind<std::vector<Disk>> Disks() {
    Kind<std::vector<Disk>> kind = List("list of [disks](#disks)", Object("", DiskTable()));
    kind.read = [read = kind.read](const JsonCursor& cursor, const Place& place) {
        std::vector<Disk> disks = read(cursor, place);
        std::set<std::uint32_t> indexes;
        for (std::size_t i = 0; i < disks.size(); ++i) {
            if (!indexes.insert(disks[i].index).second) {
                cursor.Elements()[i].Object().Require("index").Refuse("is the index of another disk too");
            }
        }
        return disks;
    };
    return kind;
}

}  // namespace machine::rows

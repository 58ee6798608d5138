#include "machine/description/tables.h"
#include "machine/description/text.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <utility>

namespace machine::rows {

// The names of the volumes so far. No two volumes share one.
class VolumeNames {
public:
    bool Taken(const std::wstring& name) const { return names_.contains(Folded(name)); }

    // Adds the names of a volume. Returns the first one that is taken, or an empty text.
    std::wstring Claim(const Volume& volume) {
        std::vector<std::wstring> names = {volume.device, volume.link_target, volume.guid};
        for (const VolumeAlias& alias : volume.aliases) {
            names.push_back(alias.guid);
        }
        names.insert(names.end(), volume.mount_points.begin(), volume.mount_points.end());
        for (const std::wstring& name : names) {
            if (!name.empty() && !names_.insert(Folded(name)).second) {
                return name;
            }
        }
        while (Taken(DiskDevice(next_disk_device_))) {
            ++next_disk_device_;
        }
        return {};
    }

    // The first free device name for a volume of this type.
    std::wstring FreeDevice(std::uint32_t drive_type) const {
        if (drive_type != DRIVE_CDROM) {
            return DiskDevice(next_disk_device_);
        }
        std::uint32_t number = 0;
        while (Taken(OpticalDevice(number))) {
            ++number;
        }
        return OpticalDevice(number);
    }

private:
    static std::wstring DiskDevice(std::uint32_t number) {
        return L"\\Device\\HarddiskVolume" + std::to_wstring(number);
    }
    static std::wstring OpticalDevice(std::uint32_t number) {
        return L"\\Device\\CdRom" + std::to_wstring(number);
    }

    std::set<std::wstring> names_;
    std::uint32_t next_disk_device_ = 1;
};

namespace {

constexpr NamedNumber kDriveTypes[] = {
    {"unknown", DRIVE_UNKNOWN}, {"noRootDir", DRIVE_NO_ROOT_DIR}, {"removable", DRIVE_REMOVABLE},
    {"fixed", DRIVE_FIXED},     {"remote", DRIVE_REMOTE},         {"cdrom", DRIVE_CDROM},
    {"ramdisk", DRIVE_RAMDISK},
};
constexpr NamedNumber kShortExtents[] = {{"first", static_cast<std::uint32_t>(ShortExtents::kFirst)},
                                         {"fitting", static_cast<std::uint32_t>(ShortExtents::kFitting)},
                                         {"none", static_cast<std::uint32_t>(ShortExtents::kNone)}};

Kind<std::wstring> MountPoint() {
    return Checked<std::wstring>("text", Text(), [](const std::wstring& path) {
        return path.size() < 3 || !DriveNumber(path.substr(0, 3)) || path.back() != L'\\'
                   ? "must be a drive root like \"C:\\\\\" or a folder that ends in a backslash"
                   : nullptr;
    });
}

// A GUID, or null for none.
Kind<std::wstring> OptionalGuidName() {
    return {"GUID or null",
            [](const JsonCursor& cursor, const Place& place) {
                return cursor.is_null() ? std::wstring() : GuidName().read(cursor, place);
            },
            [](const std::wstring& guid, const Place& place) {
                return guid.empty() ? Json() : GuidName().write(guid, place);
            }};
}

const Disk* FindDisk(const Place& place, std::uint32_t index) {
    const auto& disks = place.machine->disks;
    const auto disk = std::find_if(disks.begin(), disks.end(),
                                   [&](const Disk& candidate) { return candidate.index == index; });
    return disk == disks.end() ? nullptr : &*disk;
}

// A numbered partition of a described disk.
struct Reference {
    std::uint32_t disk = 0;
    std::uint32_t number = 0;
};

const Kind<Reference>& ReferenceKind() {
    static const Table<Reference> table = {{"disk", &Reference::disk, Number(), Required{}, ""},
                                           {"number", &Reference::number, Number(), Required{}, ""}};
    static const auto kind = Object("object with `disk` (index) and `number`", table);
    return kind;
}

const Partition* FindPartition(const Disk& disk, std::uint32_t number) {
    const auto partition =
        std::find_if(disk.partitions.begin(), disk.partitions.end(),
                     [&](const Partition& candidate) { return number != 0 && candidate.number == number; });
    return partition == disk.partitions.end() ? nullptr : &*partition;
}

// The partition that is the only extent of the volume.
std::optional<Reference> PartitionOf(const Volume& volume, const Place& place) {
    if (!volume.extents || volume.extents->size() != 1) {
        return std::nullopt;
    }
    const Extent& extent = volume.extents->front();
    const Disk* disk = FindDisk(place, extent.disk);
    if (disk == nullptr) {
        return std::nullopt;
    }
    for (const Partition& partition : disk->partitions) {
        if (partition.offset == extent.offset && partition.length == extent.length && partition.number != 0 &&
            FindPartition(*disk, partition.number)->offset == extent.offset) {
            return Reference{disk->index, partition.number};
        }
    }
    return std::nullopt;
}

void TakePartition(Volume& volume, const Reference& reference, const JsonCursor& cursor, const Place& place) {
    const Disk* disk = FindDisk(place, reference.disk);
    if (disk == nullptr) {
        cursor.Object().Require("disk").Refuse("is no described disk");
    }
    const Partition* partition = FindPartition(*disk, reference.number);
    if (partition == nullptr) {
        cursor.Object().Require("number").Refuse("is no partition of the disk");
    }
    volume.extents = {{disk->index, partition->offset, partition->length}};
}

std::string SaidByPartition(const Volume& volume, const Place& place) {
    const bool said =
        place.object != nullptr ? place.object->Has("partition") : PartitionOf(volume, place).has_value();
    return said ? "cannot be given with \"partition\", which says it" : "";
}

// Why the extents cannot be those of a real volume; empty if they can.
std::string ExtentFault(const Volume& volume, const Place& place) {
    if (!volume.extents) {
        return volume.drive_type == DRIVE_FIXED ? "a fixed volume needs \"partition\" or \"extents\"" : "";
    }
    for (const Extent& extent : *volume.extents) {
        const Disk* disk = FindDisk(place, extent.disk);
        if (disk == nullptr) {
            return "has an extent on disk " + std::to_string(extent.disk) + ", which is not described";
        }
        if (extent.offset > disk->size || extent.length > disk->size - extent.offset) {
            return "has an extent that ends beyond disk " + std::to_string(extent.disk);
        }
    }
    return {};
}

// The GUID of a volume on an MBR disk: the signature, then the offset of its partition. None for a disk
// without a signature, a dynamic disk, a disk without a table, and a volume that is no partition.
std::optional<GUID> PlaceGuid(const Volume& volume, const Place& place) {
    if (!volume.extents || volume.extents->size() != 1) {
        return std::nullopt;
    }
    const Extent& extent = volume.extents->front();
    const Disk* disk = FindDisk(place, extent.disk);
    if (disk == nullptr || disk->style != PARTITION_STYLE_MBR || disk->signature == 0 || extent.offset == 0) {
        return std::nullopt;
    }
    const bool partition =
        std::any_of(disk->partitions.begin(), disk->partitions.end(), [&](const Partition& candidate) {
            return candidate.number != 0 && candidate.mbr_type != PARTITION_LDM &&
                   candidate.offset == extent.offset;
        });
    GUID guid{};
    guid.Data1 = disk->signature;
    std::memcpy(guid.Data4, &extent.offset, sizeof(guid.Data4));
    return partition ? std::optional(guid) : std::nullopt;
}

std::wstring DefaultGuid(const Volume& volume, const Place& place) {
    if (const auto guid = PlaceGuid(volume, place)) {
        std::wstring name = Widen(GuidText(*guid));
        if (!place.names->Taken(name)) {
            return name;
        }
    }
    return Widen(GuidText(DerivedGuid("volume " + Narrow(volume.device))));
}

const Table<VolumeAlias>& AliasTable() {
    static const Table<VolumeAlias> table = {{"guid", &VolumeAlias::guid, GuidName(), Required{}, ""},
                                             {"enumerated", &VolumeAlias::enumerated, Flag(), ""}};
    return table;
}

const Table<Extent>& ExtentTable() {
    static const Table<Extent> table = {{"disk", &Extent::disk, Number(), Required{}, ""},
                                        {"offset", &Extent::offset, ByteCount(), Required{}, ""},
                                        {"length", &Extent::length, ByteCount(), Required{}, ""}};
    return table;
}

const Table<StorageNumber>& StorageNumberTable() {
    static const Table<StorageNumber> table = {
        {"type", &StorageNumber::type, Number(), Required{}, ""},
        {"number", &StorageNumber::number, Number(), Required{}, ""},
        {"partition", &StorageNumber::partition, Number(), Required{}, ""}};
    return table;
}

Table<Volume> NameRows() {
    return {
        {"driveType", &Volume::drive_type, Named(kDriveTypes), ""},
        {"device", &Volume::device, DeviceName(),
         Derived{"`\\Device\\HarddiskVolume`N or, for an optical drive, `\\Device\\CdRom`N, with the first "
                 "free N",
                 [](const Volume& volume, const Place& place) {
                     return place.names->FreeDevice(volume.drive_type);
                 }},
         ""},
        {"aliases", &Volume::aliases,
         List("list of GUIDs, or of objects with `guid` and `enumerated`",
              Object("", AliasTable(), Form::kShort)),
         "additional volume names"},
        {"mountPoints", &Volume::mount_points, List("list of text", MountPoint()),
         "drive roots and folders, each with a trailing backslash"},
        {"linked", &Volume::linked, Flag(), "false: the volume name has no symbolic link in `\\GLOBAL??`"},
        {"enumerated", &Volume::enumerated, Flag(), "false: the volume search does not return it"},
        Row<Volume>("linkTarget", &Volume::link_target, DeviceName(),
                    "another device of the same volume, which the links of its volume names lead to")
            .Otherwise("`device`"),
        Row<Volume>("extents", &Volume::extents,
                    List("list of objects with `disk`, `offset` (bytes) and `length` (bytes)",
                         Object("", ExtentTable())),
                    "")
            .Otherwise("none: the extents query fails")
            .Unless(SaidByPartition),
        {"partition", ReferenceKind(), "none", "the only extent is that partition", PartitionOf,
         TakePartition},
        {"guid", &Volume::guid, OptionalGuidName(),
         Derived{"for a partition of an MBR disk its signature and offset, else derived from the device",
                 DefaultGuid},
         "null: a device without a volume name"},
        {"unchecked", Flag(), "false",
         "true: extents may lie outside the described disks, and a fixed volume may have none",
         [](const Volume& volume, const Place& place) { return !ExtentFault(volume, place).empty(); },
         [](Volume&, bool value, const JsonCursor&, Place& place) { place.unchecked = value; }},
    };
}

void Finished(const Volume& volume, const JsonObject* object, const Place& place) {
    const std::string fault = place.unchecked ? "" : ExtentFault(volume, place);
    const std::wstring taken = place.names->Claim(volume);
    if (object == nullptr) {
        return;
    }
    if (volume.free_clusters > volume.total_clusters) {
        object->Refuse("has more free than total clusters");
    }
    if (!fault.empty()) {
        object->Refuse(fault);
    }
    if (!taken.empty()) {
        object->Refuse(Narrow(taken) + " is the name of another volume too");
    }
}

}  // namespace

Kind<std::wstring> DeviceName() {
    return Checked<std::wstring>("text: an NT device name", Text(), [](const std::wstring& name) {
        return !StartsWith(name, L"\\Device\\") || name.back() == L'\\'
                   ? "must be a device name like \"\\\\Device\\\\HarddiskVolume1\""
                   : nullptr;
    });
}

const Table<Volume>& VolumeTable() {
    static const Table<Volume> table = Joined(
        {NameRows(),
         SpaceRows(),
         {Row<Volume>("storageNumber", &Volume::storage_number,
                      Object("object with `type`, `number` and `partition`", StorageNumberTable()),
                      "what the device number control returns: the type is 7 for a disk, 2 for an optical "
                      "drive, whose partition is 4294967295")
              .Otherwise("disk and partition of the only extent; else the control fails"),
          {"openForReadingError", &Volume::open_for_reading_error, Number(),
           "the error with which opening it for reading or writing fails, but not with no access; 0: "
           "it does not"},
          {"openForWritingError", &Volume::open_for_writing_error, Number(),
           "the error with which opening it for writing fails; 0: it does not"},
          {"extentsShortError", &Volume::extents_short_error, Number(),
           "the error for a buffer that holds some extents but not all; none: 234"},
          {"extentsShortAnswer", &Volume::short_extents, Named(kShortExtents),
           "what such a buffer gets: `first` (the count and the first extent, 32 bytes), `fitting` "
           "(the count "
           "and all extents that fit) or `none` (0 bytes)"}},
         ErrorRows<Volume>(CallScope::kVolume)});
    return table;
}

Kind<std::vector<Volume>> Volumes() {
    auto kind = List("list of [volumes](#volumes)", Object<Volume>("", VolumeTable(), Form::kFull, Finished));
    kind.read = [read = kind.read](const JsonCursor& cursor, const Place& outer) {
        VolumeNames names;
        Place place = outer;
        place.names = &names;
        return read(cursor, place);
    };
    kind.write = [write = kind.write](const std::vector<Volume>& volumes, const Place& outer) {
        VolumeNames names;
        Place place = outer;
        place.names = &names;
        return write(volumes, place);
    };
    return kind;
}

}  // namespace machine::rows

#include "machine/description/parsing.h"
#include "machine/description/text.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <utility>

namespace machine::parsing {
namespace {

constexpr NamedNumber kDriveTypes[] = {
    {"unknown", DRIVE_UNKNOWN}, {"noRootDir", DRIVE_NO_ROOT_DIR}, {"removable", DRIVE_REMOVABLE},
    {"fixed", DRIVE_FIXED},     {"remote", DRIVE_REMOTE},         {"cdrom", DRIVE_CDROM},
    {"ramdisk", DRIVE_RAMDISK},
};

const wchar_t kDevicePrefix[] = L"\\Device\\";

std::wstring GuidName(const JsonCursor& cursor) {
    return Widen(GuidText(cursor.Guid()));
}

std::vector<VolumeAlias> Aliases(const JsonCursor& cursor) {
    std::vector<VolumeAlias> aliases;
    for (const JsonCursor& element : cursor.Elements()) {
        if (!element.is_object()) {
            aliases.push_back({GuidName(element), true});
            continue;
        }
        JsonObject object = element.Object();
        aliases.push_back({GuidName(object.Require("guid")), object.Bool("enumerated", true)});
        object.RefuseOthers();
    }
    return aliases;
}

std::vector<std::wstring> MountPoints(const JsonCursor& cursor) {
    std::vector<std::wstring> mount_points;
    for (const JsonCursor& element : cursor.Elements()) {
        const std::wstring text = element.Text();
        if (text.size() < 3 || !DriveNumber(text.substr(0, 3)) || text.back() != L'\\') {
            element.Refuse("must be a drive root like \"C:\\\\\" or a folder that ends in a backslash");
        }
        mount_points.push_back(text);
    }
    return mount_points;
}

std::optional<std::vector<Extent>> Extents(JsonObject& volume, const std::vector<Disk>& disks) {
    const auto reference = volume.Find("partition");
    const auto list = volume.Find("extents");
    if (reference && list) {
        list->Refuse("cannot be given with \"partition\", which says it");
    }
    if (reference) {
        JsonObject object = reference->Object();
        const JsonCursor disk_cursor = object.Require("disk");
        const JsonCursor number_cursor = object.Require("number");
        object.RefuseOthers();
        const auto disk = std::find_if(
            disks.begin(), disks.end(),
            [index = disk_cursor.Number32()](const Disk& candidate) { return candidate.index == index; });
        if (disk == disks.end()) {
            disk_cursor.Refuse("is no described disk");
        }
        const auto partition = std::find_if(disk->partitions.begin(), disk->partitions.end(),
                                            [number = number_cursor.Number32()](const Partition& candidate) {
                                                return number != 0 && candidate.number == number;
                                            });
        if (partition == disk->partitions.end()) {
            number_cursor.Refuse("is no partition of the disk");
        }
        return std::vector<Extent>{{disk->index, partition->offset, partition->length}};
    }
    if (!list) {
        return std::nullopt;
    }
    std::vector<Extent> extents;
    for (const JsonCursor& element : list->Elements()) {
        JsonObject object = element.Object();
        extents.push_back({object.Require("disk").Number32(), object.Require("offset").ByteCount(),
                           object.Require("length").ByteCount()});
        object.RefuseOthers();
    }
    return extents;
}

void CheckExtents(const JsonObject& object, const Volume& volume, const std::vector<Disk>& disks) {
    if (!volume.extents) {
        if (volume.drive_type == DRIVE_FIXED) {
            object.Refuse("a fixed volume needs \"partition\" or \"extents\"");
        }
        return;
    }
    for (const Extent& extent : *volume.extents) {
        const auto disk = std::find_if(disks.begin(), disks.end(),
                                       [&](const Disk& candidate) { return candidate.index == extent.disk; });
        if (disk == disks.end()) {
            object.Refuse("has an extent on disk " + std::to_string(extent.disk) +
                          ", which is not described");
        }
        if (extent.offset > disk->size || extent.length > disk->size - extent.offset) {
            object.Refuse("has an extent that ends beyond disk " + std::to_string(extent.disk));
        }
    }
}

// Detects names that more than one volume claims.
class Names {
public:
    void Claim(const JsonObject& object, const std::wstring& name) {
        if (!names_.insert(Folded(name)).second) {
            object.Refuse(Narrow(name) + " is the name of another volume too");
        }
    }

    bool Taken(const std::wstring& name) const { return names_.contains(Folded(name)); }

private:
    std::set<std::wstring> names_;
};

std::wstring DeviceName(const JsonCursor& cursor) {
    std::wstring text = cursor.Text();
    if (!StartsWith(text, kDevicePrefix) || text.back() == L'\\') {
        cursor.Refuse("must be a device name like \"\\\\Device\\\\HarddiskVolume1\"");
    }
    return text;
}

std::wstring Device(JsonObject& object, std::uint32_t drive_type, const Names& names,
                    std::uint32_t& next_number) {
    if (const auto device = object.Find("device")) {
        return DeviceName(*device);
    }
    const bool cdrom = drive_type == DRIVE_CDROM;
    std::wstring name;
    std::uint32_t number = cdrom ? 0 : next_number;
    do {
        name =
            std::wstring(kDevicePrefix) + (cdrom ? L"CdRom" : L"HarddiskVolume") + std::to_wstring(number++);
    } while (names.Taken(name));
    next_number = cdrom ? next_number : number;
    return name;
}

// The GUID of a volume on an MBR disk: the signature, then the offset of its partition. None for a disk
// without a signature, a dynamic disk, a disk without a table, and a volume that is no partition.
std::optional<GUID> PlaceGuid(const Volume& volume, const std::vector<Disk>& disks) {
    if (!volume.extents || volume.extents->size() != 1) {
        return std::nullopt;
    }
    const Extent& extent = volume.extents->front();
    const auto disk = std::find_if(disks.begin(), disks.end(),
                                   [&](const Disk& candidate) { return candidate.index == extent.disk; });
    if (disk == disks.end() || disk->style != PARTITION_STYLE_MBR || disk->signature == 0 ||
        extent.offset == 0) {
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

std::wstring Guid(JsonObject& object, const Volume& volume, const std::vector<Disk>& disks,
                  const Names& names) {
    if (const auto guid = object.Find("guid")) {
        return guid->is_null() ? std::wstring() : GuidName(*guid);
    }
    if (const auto place = PlaceGuid(volume, disks)) {
        std::wstring name = Widen(GuidText(*place));
        if (!names.Taken(name)) {
            return name;
        }
    }
    return Widen(GuidText(DerivedGuid("volume " + Narrow(volume.device))));
}

Volume VolumeOf(const JsonCursor& cursor, const std::vector<Disk>& disks, Names& names,
                std::uint32_t& next_number) {
    JsonObject object = cursor.Object();
    Volume volume;
    if (const auto type = object.Find("driveType")) {
        volume.drive_type = NamedOrNumber(*type, kDriveTypes);
    }
    volume.device = Device(object, volume.drive_type, names, next_number);
    if (const auto aliases = object.Find("aliases")) {
        volume.aliases = Aliases(*aliases);
    }
    if (const auto mount_points = object.Find("mountPoints")) {
        volume.mount_points = MountPoints(*mount_points);
    }
    volume.linked = object.Bool("linked", true);
    volume.enumerated = object.Bool("enumerated", true);
    if (const auto target = object.Find("linkTarget")) {
        volume.link_target = DeviceName(*target);
    }
    volume.extents = Extents(object, disks);
    volume.guid = Guid(object, volume, disks, names);
    CompleteVolume(object, volume, disks);
    if (!object.Bool("unchecked", false)) {
        CheckExtents(object, volume, disks);
    }
    volume.open_for_writing_error = object.Number32("openForWritingError", 0);
    volume.errors = ErrorsOf(object, CallScope::kVolume);
    object.RefuseOthers();

    names.Claim(object, volume.device);
    if (!volume.link_target.empty()) {
        names.Claim(object, volume.link_target);
    }
    if (!volume.guid.empty()) {
        names.Claim(object, volume.guid);
    }
    for (const VolumeAlias& alias : volume.aliases) {
        names.Claim(object, alias.guid);
    }
    for (const std::wstring& mount_point : volume.mount_points) {
        names.Claim(object, mount_point);
    }
    return volume;
}

}  // namespace

std::vector<Volume> Volumes(const JsonCursor& cursor, const std::vector<Disk>& disks) {
    std::vector<Volume> volumes;
    Names names;
    std::uint32_t next_number = 1;
    for (const JsonCursor& element : cursor.Elements()) {
        volumes.push_back(VolumeOf(element, disks, names, next_number));
    }
    return volumes;
}

}  // namespace machine::parsing

#pragma once

#include "common/windows.h"

#include <wtypes.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace machine {

using Bytes = std::vector<std::uint8_t>;

// The error codes of calls on one object or, at machine level, on every object. A code is a Win32 error, an
// NTSTATUS or an HRESULT, depending on the call. The key is the call's name as in the call log. A call with
// a suffix ("DeviceIoControl:...") also matches the name without the suffix.
struct CallErrors {
    std::unordered_map<std::string, std::uint32_t> codes;

    std::optional<std::uint32_t> Find(const std::string& call) const;

    bool operator==(const CallErrors&) const = default;
};

// One partition table entry, as the drive layout controls return it.
struct Partition {
    std::uint32_t style = PARTITION_STYLE_MBR;  // of the entry; normally equal to that of the disk
    std::uint64_t offset = 0;                   // bytes from the start of the disk
    std::uint64_t length = 0;                   // bytes
    std::uint32_t number = 0;                   // 0 for unused entries, extended partitions and links
    bool rewrite = false;
    bool service = false;  // as current systems tell it
    GUID id{};             // of an MBR partition only on current systems

    std::uint8_t mbr_type = 0;
    bool active = false;
    bool recognized = false;
    std::uint32_t hidden_sectors = 0;

    GUID gpt_type{};
    std::uint64_t gpt_attributes = 0;
    std::wstring gpt_name;  // at most 36 characters

    bool operator==(const Partition&) const = default;
};

// The raw image file that backs a disk.
struct Image {
    std::filesystem::path file;
    bool writable = false;                          // writes go to `file` itself
    std::optional<std::filesystem::path> write_to;  // writes go to this copy, made at the first write

    bool operator==(const Image&) const = default;
};

// A WMI property: a typed value, or the HRESULT with which reading it fails.
struct WmiValue {
    VARTYPE type = VT_NULL;   // scalar type, or one of a list: VT_ARRAY | VT_BSTR
    std::int64_t number = 0;  // of VT_UI8: the unsigned number with the same bits
    double real = 0;
    std::wstring text;
    std::vector<std::wstring> texts;
    std::vector<std::int64_t> numbers;
    std::optional<std::uint32_t> error;

    bool operator==(const WmiValue&) const = default;
};

struct WmiProperty {
    std::wstring name;
    WmiValue value;

    bool operator==(const WmiProperty&) const = default;
};

using WmiInstance = std::vector<WmiProperty>;

struct WmiClass {
    std::vector<WmiInstance> instances;
    CallErrors errors;
    std::optional<std::uint32_t> break_error{};  // of fetching an object behind the first `whole_objects`
    std::size_t whole_objects = 0;

    bool operator==(const WmiClass&) const = default;
};

inline bool operator==(const DISK_INT13_INFO& left, const DISK_INT13_INFO& right) noexcept {
    const auto members = [](const DISK_INT13_INFO& info) {
        return std::tie(info.DriveSelect, info.MaxCylinders, info.SectorsPerTrack, info.MaxHeads,
                        info.NumberDrives);
    };
    return members(left) == members(right);
}

inline bool operator==(const DISK_EX_INT13_INFO& left, const DISK_EX_INT13_INFO& right) noexcept {
    const auto members = [](const DISK_EX_INT13_INFO& info) {
        return std::tie(info.ExBufferSize, info.ExFlags, info.ExCylinders, info.ExHeads,
                        info.ExSectorsPerTrack, info.ExSectorsPerDrive, info.ExSectorSize, info.ExReserved);
    };
    return members(left) == members(right);
}

struct Disk {
    std::uint32_t index = 0;
    std::uint64_t size = 0;  // bytes
    std::uint32_t bytes_per_sector = 512;
    std::uint32_t media_type = 12;  // FixedMedia
    std::uint64_t cylinders = 0;
    std::uint32_t tracks_per_cylinder = 255;
    std::uint32_t sectors_per_track = 63;

    std::wstring device;                       // "\Device\Harddisk0\DR0"
    std::uint32_t open_for_reading_error = 0;  // nor for writing; with no access it can be opened
    std::uint32_t geometry_bytes = 112;        // that the extended geometry control returns at most

    std::uint32_t detection_type = 0;  // 0 none, 1 int 13, 2 extended int 13
    DISK_INT13_INFO int13{};
    DISK_EX_INT13_INFO ex_int13{};

    std::uint32_t style = PARTITION_STYLE_RAW;
    std::uint32_t signature = 0;
    std::uint32_t checksum = 0;         // in the geometry
    std::uint32_t layout_checksum = 0;  // in the layout
    GUID disk_id{};
    std::uint64_t starting_usable_offset = 0;
    std::uint64_t usable_length = 0;
    std::uint32_t max_partition_count = 128;
    std::vector<Partition> partitions;
    bool blank = false;           // no table, but reported as style 0 with a zeroed partition record
    bool offline = false;         // the older layout control fails
    bool recognizes_all = false;  // every used MBR entry but a container is recognised, whatever its type
    std::uint32_t open_for_writing_error = 0;  // 0: it can be opened for writing

    bool hidden_from_wmi = false;
    WmiInstance wmi;  // properties that override those derived from the disk

    std::optional<Image> image;
    CallErrors errors;

    bool operator==(const Disk&) const = default;
};

struct Extent {
    std::uint32_t disk = 0;
    std::uint64_t offset = 0;  // bytes
    std::uint64_t length = 0;  // bytes

    bool operator==(const Extent&) const = default;
};

// What the device number control returns.
struct StorageNumber {
    std::uint32_t type = 0;  // 7: a disk, 2: an optical drive
    std::uint32_t number = 0;
    std::uint32_t partition = 0;

    bool operator==(const StorageNumber&) const = default;
};

// What the extents control puts into a buffer that holds an extent, but not all.
enum class ShortExtents { kFirst, kFitting, kNone };

// An additional GUID name of a volume.
struct VolumeAlias {
    std::wstring guid;
    bool enumerated = true;

    bool operator==(const VolumeAlias&) const = default;
};

struct Volume {
    std::wstring guid;         // "{...}"; empty: no mount manager name
    std::wstring device;       // "\Device\HarddiskVolume3"
    std::wstring link_target;  // the device that the volume names link to; empty: `device`
    std::vector<VolumeAlias> aliases;
    bool linked = true;                      // \GLOBAL?? contains its "Volume{...}" link
    bool enumerated = true;                  // the volume search returns it
    std::vector<std::wstring> mount_points;  // "C:\", "C:\Data\Archive\"

    std::uint32_t drive_type = DRIVE_FIXED;
    bool has_media = true;
    std::wstring label;
    std::wstring file_system;  // empty: not recognised
    std::uint32_t serial = 0;
    std::uint32_t max_component_length = 255;
    std::uint32_t file_system_flags = 0;

    std::uint32_t sectors_per_cluster = 0;
    std::uint32_t bytes_per_sector = 512;
    std::uint64_t total_clusters = 0;
    std::uint64_t free_clusters = 0;
    std::uint64_t total_bytes = 0;
    std::uint64_t free_bytes = 0;
    std::uint64_t free_bytes_to_caller = 0;

    std::uint64_t length = 0;                          // bytes, as the length control returns it
    std::optional<std::vector<Extent>> extents;        // none: the extents control is not supported
    std::optional<std::uint32_t> extents_short_error;  // if the buffer cannot hold all extents
    ShortExtents short_extents = ShortExtents::kFirst;
    std::optional<Partition> partition;             // what the partition controls return
    std::optional<StorageNumber> storage_number{};  // none: that of the partition, if there is one extent
    std::uint32_t open_for_writing_error = 0;       // 0: it can be opened for writing
    std::uint32_t open_for_reading_error = 0;       // nor for writing; with no access it can be opened
    CallErrors errors;

    bool operator==(const Volume&) const = default;
};

struct DosDevice {
    std::wstring name;  // "C:", "PhysicalDrive0"
    std::wstring target;
    CallErrors errors{};

    bool operator==(const DosDevice&) const = default;
};

struct DirectoryEntry {
    std::wstring name;
    std::wstring type;

    bool operator==(const DirectoryEntry&) const = default;
};

struct ObjectDirectory {
    std::wstring path;
    std::optional<std::vector<DirectoryEntry>> entries;  // none: derived from disks, volumes and DOS devices
    CallErrors errors;
    std::uint32_t other_names = 0;  // names of other drivers, added to the derived entries in no order

    bool operator==(const ObjectDirectory&) const = default;
};

struct RegistryValue {
    std::wstring name;
    std::uint32_t type = REG_SZ;
    Bytes data;

    bool operator==(const RegistryValue&) const = default;
};

struct RegistryKey {
    std::wstring path;  // below HKEY_LOCAL_MACHINE
    std::vector<RegistryValue> values;

    bool operator==(const RegistryKey&) const = default;
};

struct Firmware {
    std::uint32_t type = 2;             // 0 unknown, 1 BIOS, 2 UEFI
    std::uint32_t variable_length = 0;  // if not 0, reading a firmware variable succeeds with this length
    std::optional<std::uint32_t> variable_error;  // none: the usual error of this firmware type

    bool operator==(const Firmware&) const = default;
};

// A Windows machine as seen by a program. Plain data. Defaults are already filled in, so each field holds
// what the system would return.
struct Description {
    std::string name;
    std::uint32_t recording = 0;  // 0 no recording, 1 as it was recorded, 2 redacted
    std::vector<Disk> disks;
    std::vector<Volume> volumes;
    std::vector<DosDevice> dos_devices;  // in addition to, or instead of, those of disks and volumes
    std::optional<std::vector<std::wstring>> dos_names;  // that are listed; none: those of \GLOBAL??
    std::vector<ObjectDirectory> directories;
    std::wstring current_drive = L"C:\\";
    std::map<std::wstring, WmiClass> wmi;  // key: class name in upper case
    std::vector<RegistryKey> registry;
    Firmware firmware;
    std::set<std::string> missing;         // functions that kernel32 and ntdll do not export
    std::uint32_t enumerator_refusal = 0;  // HRESULT of fetching from a WMI enumerator without security
    bool xml_component = true;             // the XML component is registered
    CallErrors errors;

    bool operator==(const Description&) const = default;
};

// Thrown for an invalid description. what() is "FILE: PATH: REASON".
class DescriptionError : public std::runtime_error {
public:
    DescriptionError(std::string file, std::string path, std::string reason);

    const std::string& file() const noexcept { return file_; }
    const std::string& path() const noexcept { return path_; }  // JSON pointer, empty for the whole file
    const std::string& reason() const noexcept { return reason_; }

private:
    std::string file_;
    std::string path_;
    std::string reason_;
};

// The description in a folder that holds a machine.
inline constexpr const char* kFileInFolder = "machine.json";

// Reads a description file (UTF-8 JSON), or the one in a folder. Image paths are relative to the folder of
// the file. Throws DescriptionError.
Description LoadDescription(const std::filesystem::path& machine);

// Parses a description from memory. `name` is the file name used in errors; image paths are relative to
// `directory`. Throws DescriptionError.
Description ParseDescription(const std::string& json, const std::string& name,
                             const std::filesystem::path& directory = {});

// The JSON text of a description, without what ParseDescription derives by itself. Image paths are written
// relative to `directory`. What the format cannot say is left out: the partition of a volume except for its
// number if it is not that of its disk, and that a WMI object lacks a property of the derived one.
std::string WriteDescription(const Description& description, const std::filesystem::path& directory = {});

}  // namespace machine

#pragma once

#include "common/platform/device_control.h"
#include "common/platform/unique_handle.h"
#include "common/text/listing_bound.h"
#include "common/windows.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Every question about storage that the library asks the system, without a line in the log. Each function
// returns a Win32 error code, 0 for success, and changes its output on success only. Counts, lengths and
// offsets in an answer are checked against the bytes that came back: an answer that contradicts itself is
// ERROR_INVALID_DATA. std::bad_alloc may be thrown where an answer has no fixed size. Who logs stands above:
// WinAPIWrapper with its trace, the flat enumerator with its own lines.
namespace win {

struct DiskFreeSpace {
    DWORD sectors_per_cluster = 0;
    DWORD bytes_per_sector = 0;
    DWORD free_clusters = 0;
    DWORD total_clusters = 0;
};

// All in bytes.
struct DiskFreeSpaceEx {
    std::uint64_t free_available_to_caller = 0;
    std::uint64_t total = 0;
    std::uint64_t total_free = 0;
};

struct VolumeInformation {
    std::wstring label;
    DWORD serial_number = 0;
    DWORD maximum_component_length = 0;
    DWORD file_system_flags = 0;
    std::wstring file_system;
};

struct FileOpening {
    DWORD access = 0;
    DWORD share_mode = FILE_SHARE_READ | FILE_SHARE_WRITE;
    DWORD disposition = OPEN_EXISTING;
    DWORD flags = 0;
};

// The characters of a buffer for one name, its terminator included, where a caller asks for no other number.
inline constexpr std::size_t kNameCharacters = 260;

// "\\.\PhysicalDriveN".
std::wstring PhysicalDriveName(std::uint32_t disk_number);

// Opens a file or device. On failure `file` is empty.
DWORD OpenDevice(const std::wstring& path, const FileOpening& opening, UniqueFile& file);

// Disks and volumes that are open. An answer of no fixed size empties `buffer` on failure.

DWORD ReadDriveGeometry(const UniqueFile& drive, DISK_GEOMETRY& geometry);
// DISK_GEOMETRY_EX with its partition record; the detection record may be missing.
DWORD ReadDriveGeometryEx(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer);
// DRIVE_LAYOUT_INFORMATION or DRIVE_LAYOUT_INFORMATION_EX with all the entries that it counts.
DWORD ReadDriveLayout(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer);
DWORD ReadDriveLayoutEx(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer);
// The length in bytes, never negative.
DWORD ReadLength(const UniqueFile& device, std::int64_t& length);
DWORD ReadPartitionInformation(const UniqueFile& volume, PARTITION_INFORMATION& partition);
// VOLUME_DISK_EXTENTS with all the extents that it counts.
DWORD ReadVolumeExtents(const UniqueFile& volume, const Growth& growth, ByteBuffer& buffer);

// What the buffers of a whole answer hold, valid as long as the buffer.

const DRIVE_LAYOUT_INFORMATION_EX& LayoutExIn(const ByteBuffer& buffer);
std::span<const PARTITION_INFORMATION> PartitionsIn(const ByteBuffer& layout);
std::span<const PARTITION_INFORMATION_EX> PartitionsIn(const DRIVE_LAYOUT_INFORMATION_EX& layout);
std::span<const DISK_EXTENT> ExtentsIn(const ByteBuffer& buffer);

// Volumes, by a root path with its trailing backslash.

// A DRIVE_* value. DRIVE_UNKNOWN is stored, and is a failure.
DWORD ReadDriveType(const std::wstring& root, UINT& type);
DWORD ReadDiskFreeSpace(const std::wstring& root, DiskFreeSpace& space);
DWORD ReadDiskFreeSpaceEx(const std::wstring& root, DiskFreeSpaceEx& space);
// `name_characters`: of the buffers for the label and the file system's name.
DWORD ReadVolumeInformation(const std::wstring& root, std::size_t name_characters,
                            VolumeInformation& information);

// Names.

enum class Retry { kNever, kAsLargeAsTold };

// The drive roots and folders where a volume, named by its GUID path, is mounted.
DWORD ListMountPaths(const std::wstring& volume, std::size_t first_characters, Retry retry,
                     std::vector<std::wstring>& paths);
// The targets of a DOS device name; of a null name, all DOS device names.
DWORD ListDosDeviceTargets(const wchar_t* device, std::vector<std::wstring>& targets);
// The GUID path of the volume that is mounted at a drive root or folder.
DWORD ReadVolumeNameOf(const std::wstring& mount_point, std::wstring& volume);
// A bit for every drive letter in use, that of A: first.
DWORD ReadLogicalDrives(DWORD& drives);

// The listing of the machine's volumes by their GUID paths. `name_characters` is the size of the buffer for
// one of them. ERROR_NO_MORE_FILES ends the list.
DWORD ListFirstVolume(std::size_t name_characters, UniqueVolumeSearch& search, std::wstring& volume);
DWORD ListNextVolume(std::size_t name_characters, const UniqueVolumeSearch& search, std::wstring& volume);

// Calls `visit(volume)` for `volume`, the first one found, and for all after it. ERROR_NO_MORE_FILES where
// the list ended; ERROR_INVALID_DATA where it had no end.
template <class Visit>
DWORD VisitVolumes(std::size_t name_characters, const UniqueVolumeSearch& search, std::wstring volume,
                   Visit&& visit) {
    for (std::size_t i = 0; i < kMostListed; ++i) {
        visit(volume);
        const DWORD error = ListNextVolume(name_characters, search, volume);
        if (error != ERROR_SUCCESS) {
            return error;
        }
    }
    return ERROR_INVALID_DATA;
}

}  // namespace win

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

// All storage queries that the library makes. They log nothing; their callers do: WinAPIWrapper logs trace
// lines, the flat enumerator its own lines. Each function returns a Win32 error code (0 for success) and,
// unless it says otherwise, changes its output only on success. Counts, lengths and offsets in an answer are
// checked against the number of bytes returned; an inconsistent answer fails with ERROR_INVALID_DATA. Queries
// whose answer has no fixed size may throw std::bad_alloc.
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

// The size of a buffer for one name, in characters, including the terminator. `name_characters` below is the
// size that the system is told, at most this.
inline constexpr DWORD kNameCharacters = 260;

// "\\.\PhysicalDriveN".
std::wstring PhysicalDriveName(std::uint32_t disk_number);

// Opens a file or device. On failure `file` is empty.
DWORD OpenDevice(const std::wstring& path, const FileOpening& opening, UniqueFile& file);

// Queries on open disks and volumes. If an answer has no fixed size, `buffer` is empty on failure.

DWORD ReadDriveGeometry(const UniqueFile& drive, DISK_GEOMETRY& geometry);
// DISK_GEOMETRY_EX including its partition record; the detection record may be missing.
DWORD ReadDriveGeometryEx(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer);
// DRIVE_LAYOUT_INFORMATION or DRIVE_LAYOUT_INFORMATION_EX including all the entries that it counts.
DWORD ReadDriveLayout(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer);
DWORD ReadDriveLayoutEx(const UniqueFile& drive, const Growth& growth, ByteBuffer& buffer);
// The length in bytes, never negative.
DWORD ReadLength(const UniqueFile& device, std::int64_t& length);
DWORD ReadPartitionInformation(const UniqueFile& volume, PARTITION_INFORMATION& partition);
// VOLUME_DISK_EXTENTS including all the extents that it counts.
DWORD ReadVolumeExtents(const UniqueFile& volume, const Growth& growth, ByteBuffer& buffer);

// Access to the contents of a complete answer; valid as long as the buffer.

const DRIVE_LAYOUT_INFORMATION_EX& LayoutExIn(const ByteBuffer& buffer);
std::span<const PARTITION_INFORMATION> ClassicPartitionsIn(const ByteBuffer& layout);
std::span<const PARTITION_INFORMATION_EX> PartitionsIn(const DRIVE_LAYOUT_INFORMATION_EX& layout);
std::span<const DISK_EXTENT> ExtentsIn(const ByteBuffer& buffer);

// Queries on volumes, by root path with a trailing backslash.

// Reads a DRIVE_* value. DRIVE_UNKNOWN is stored and counts as a failure.
DWORD ReadDriveType(const std::wstring& root, UINT& type);
DWORD ReadDiskFreeSpace(const std::wstring& root, DiskFreeSpace& space);
DWORD ReadDiskFreeSpaceEx(const std::wstring& root, DiskFreeSpaceEx& space);
// `name_characters` is the size of the buffers for the label and for the file system name.
DWORD ReadVolumeInformation(const std::wstring& root, DWORD name_characters, VolumeInformation& information);

// Volume and device names.

enum class Retry { kNever, kAsLargeAsTold };

// Lists the drive roots and folders where a volume is mounted. `volume` is its volume GUID path.
DWORD ListMountPaths(const std::wstring& volume, std::size_t first_characters, Retry retry,
                     std::vector<std::wstring>& paths);
// Lists the targets of a DOS device name, or all DOS device names if `device` is null.
DWORD ListDosDeviceTargets(const wchar_t* device, std::vector<std::wstring>& targets);
// Reads the volume GUID path of the volume that is mounted at a drive root or folder.
DWORD ReadVolumeNameOf(const std::wstring& mount_point, std::wstring& volume);
// Reads a bit mask of the drive letters in use; bit 0 is A:.
DWORD ReadLogicalDrives(DWORD& drives);

// Enumerate the machine's volumes by volume GUID path. `name_characters` is the buffer size for one path.
// ERROR_NO_MORE_FILES marks the end of the list.
DWORD ListFirstVolume(DWORD name_characters, UniqueVolumeSearch& search, std::wstring& volume);
DWORD ListNextVolume(DWORD name_characters, const UniqueVolumeSearch& search, std::wstring& volume);

// Calls `visit(volume)` for `volume`, the first one found, and for all volumes after it. Returns
// ERROR_NO_MORE_FILES at the end of the list, ERROR_INVALID_DATA if the list exceeds kMostListed volumes, or
// the error of the enumeration.
template <class Visit>
DWORD VisitVolumes(DWORD name_characters, const UniqueVolumeSearch& search, std::wstring volume,
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

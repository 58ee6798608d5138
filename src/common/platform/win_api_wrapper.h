#pragma once

#include "common/platform/storage_queries.h"

#include <cstdint>
#include <string>
#include <vector>

namespace win {

// The storage functions of the system, called only through the bound table. Every function logs trace lines
// and sets `error` to 0 on entry. On failure it logs one line, stores a non-zero Win32 code in `error` and
// returns false. Nothing throws. Counts, lengths and offsets in an answer are checked against the number of
// bytes returned; an inconsistent answer fails with ERROR_INVALID_DATA.
class WinAPIWrapper {
public:
    // Lists the drive roots and folders where a volume is mounted. Appends a missing trailing backslash.
    static bool GetVolumePathNamesForVolumeNameW(const std::wstring& volume, std::vector<std::wstring>& paths,
                                                 DWORD& error);
    // Lists the targets of a DOS device name, or all DOS device names if `device` is empty.
    static bool QueryDosDeviceW(const std::wstring& device, std::vector<std::wstring>& targets, DWORD& error);
    // Reads a DRIVE_* value. Appends a missing trailing backslash. DRIVE_UNKNOWN is a failure.
    static bool GetDriveTypeW(const std::wstring& root, UINT& drive_type, DWORD& error);
    static bool GetDiskFreeSpaceW(const std::wstring& root, DiskFreeSpace& space, DWORD& error);
    static bool GetDiskFreeSpaceExW(const std::wstring& root, DiskFreeSpaceEx& space, DWORD& error);
    static bool GetVolumeInformationW(const std::wstring& root, VolumeInformation& information, DWORD& error);
    static bool FindFirstVolumeW(std::wstring& volume, UniqueVolumeSearch& search, DWORD& error);
    // Fails with ERROR_NO_MORE_FILES at the end of the list.
    static bool FindNextVolumeW(const UniqueVolumeSearch& search, std::wstring& volume, DWORD& error);

    static bool CreateFileW(const std::wstring& path, const FileOpening& opening, UniqueFile& file,
                            DWORD& error);
    // Opens \\.\PhysicalDriveN. Fails with ERROR_INVALID_PARAMETER if `drive` is null.
    static bool OpenPhysicalDrive(std::uint32_t disk_index, DWORD access, UniqueFile* drive, DWORD& error);
    static bool FlushFileBuffers(const UniqueFile& file, DWORD& error);

    // The three queries below start with a buffer of 512 bytes, or of the size of `buffer` if that is larger.
    // On success `buffer` contains exactly the bytes returned; on failure it is empty.

    // DISK_GEOMETRY_EX including its partition record; the detection record may be missing.
    static bool GetDriveGeometryEx(const UniqueFile& drive, std::uint32_t disk_index, ByteBuffer& buffer,
                                   DWORD& error);
    // DRIVE_LAYOUT_INFORMATION_EX including all the entries that it counts.
    static bool GetDriveLayoutEx(const UniqueFile& drive, std::uint32_t disk_index, ByteBuffer& buffer,
                                 DWORD& error);
    // VOLUME_DISK_EXTENTS including all the extents that it counts.
    static bool GetVolumeDiskExtents(const UniqueFile& volume, const std::wstring& volume_name,
                                     ByteBuffer& buffer, DWORD& error);
    // The length in bytes of a disk or a volume.
    static bool GetDiskLengthInformation(const UniqueFile& device, const std::wstring& name,
                                         std::int64_t& length, DWORD& error);

    // Functions used to write to a disk.
    static bool SetDriveLayoutEx(const UniqueFile& drive, std::uint32_t disk_index, ByteBuffer& layout,
                                 DWORD& error);
    static bool CreateDisk(const UniqueFile& drive, CREATE_DISK& description, DWORD& error);
    static bool UpdateDiskProperties(const UniqueFile& drive, DWORD& error);
};

}  // namespace win

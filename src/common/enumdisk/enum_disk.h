#pragma once

#include "common/logger/orvane_logger.h"
#include "common/platform/storage_queries.h"
#include "common/record/rows.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string>
#include <vector>

// The flat enumerator of physical disks, drives and drive letters. It holds no state between calls. False is
// a failure, which lines in the log tell. Throws std::bad_alloc alone.
class EnumDisk {
public:
    EnumDisk() = default;
    virtual ~EnumDisk() = default;
    EnumDisk(const EnumDisk&) = delete;
    EnumDisk& operator=(const EnumDisk&) = delete;

    // The smallest drive root ("C:\") among a volume's mount paths, a multi-string of `length` characters;
    // empty where there is none.
    virtual std::wstring GetDriveLetter(const wchar_t* volume_name, const wchar_t* mount_paths,
                                        std::size_t length);
    // The same for paths that are a list already.
    std::wstring DriveLetterAmong(const std::wstring& volume_name,
                                  const std::vector<std::wstring>& mount_paths);
    // Whether a path of `length` characters is a drive root.
    virtual bool IsDriveLetter(const wchar_t* mount_path, std::size_t length) const;

    // The numbers of the usable disks in the order in which they are listed, and the highest number seen,
    // usable or not (-1: none).
    static bool GetPhysicalDrivesIndexes(std::vector<std::uint32_t>& indexes, std::int32_t& maximum);
    // The length of a disk in bytes. Failures are logged at `level`.
    static bool GetDiskLength(std::uint32_t disk_number, int level, std::int64_t& length, DWORD& error);
    // The disk's layout, extended or classic, whole.
    static bool GetDriveLayout(std::uint32_t disk_number, bool extended, win::ByteBuffer& layout,
                               DWORD& error);
    // Every disk with its partition rows, one row for each number from 0 to the highest. `drives` (may be
    // null) give the rows their letters.
    bool GetDiskDetails(const std::vector<DriveRow>* drives, std::vector<DiskRow>& disks);
    // Appends a row for every fixed volume.
    bool GetDrives(std::vector<DriveRow>& drives);
    // Inserts placeholders for the numbers that are left out.
    static bool AddMissingPhysicalDisks(std::vector<DiskRow>& disks);

private:
    enum class Usability { kUsable, kUnavailable, kError };

    // What reading one disk means for the whole enumeration.
    enum class DiskResult { kRead, kSkipped, kFailed };

    enum class ExtentResult { kSingle, kSeveral, kFailed };

    static bool ListUsableDisks(std::vector<std::uint32_t>& indexes, std::int32_t& maximum);
    // False where the disk ends the listing.
    static bool AddIfUsable(std::uint32_t disk_number, std::vector<std::uint32_t>& indexes);
    static Usability DiskUsable(std::uint32_t disk_number);
    static DWORD ReadDriveLayout(std::uint32_t disk_number, bool extended, win::ByteBuffer& layout);
    static bool GetDriveGeometry(std::uint32_t disk_number, DISK_GEOMETRY& geometry);
    DiskResult ReadDisk(std::uint32_t disk_number, DiskRow& disk);
    bool ReadDisks(std::vector<DiskRow>& disks);
    bool GetPartitionInfo(DiskRow& disk);
    ExtentResult GetVolumeExtents(const std::wstring& volume, DriveRow& drive);
    static bool QueryExtents(const std::wstring& volume, win::ByteBuffer& extents);
    bool DescribeDrive(const std::wstring& volume, DriveRow& drive);
    static void GetVolumeInfo(DriveRow& drive);

    // Formats a trace line into the message buffer and logs it.
    template <class... Values>
    void TraceMessage(const wchar_t* format, Values... values) {
        message_.fill(L'\0');
        _snwprintf(message_.data(), message_.size() - 1, format, values...);
        GetLogger().Write(kLogTrace, L"%s", message_.data());
    }

    std::array<wchar_t, 255> message_{};
};

// Tells whether a disk has a GUID partition table. Leaves `is_gpt` alone where the layout cannot be read
// (false).
bool DriveIsGPT(std::uint32_t disk_number, bool& is_gpt);

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

// The flat enumerator of physical disks, drives and drive letters. Keeps no state between calls. Functions
// that fail log it and return false. Throws only std::bad_alloc.
class EnumDisk {
public:
    EnumDisk() = default;
    virtual ~EnumDisk() = default;
    EnumDisk(const EnumDisk&) = delete;
    EnumDisk& operator=(const EnumDisk&) = delete;

    // The alphabetically first drive root ("C:\") among a volume's mount paths, or an empty text if there is
    // none. `mount_paths` is a multi-string of `length` characters.
    virtual std::wstring GetDriveLetter(const wchar_t* volume_name, const wchar_t* mount_paths,
                                        std::size_t length);
    // The same for a list of paths.
    std::wstring DriveLetterAmong(const std::wstring& volume_name,
                                  const std::vector<std::wstring>& mount_paths) const;
    // Whether a path of `length` characters is a drive root.
    virtual bool IsDriveLetter(const wchar_t* mount_path, std::size_t length) const;

    // Lists the numbers of the usable disks in enumeration order. `maximum` is set to the highest number
    // found, usable or not (-1: none).
    static bool GetPhysicalDrivesIndexes(std::vector<std::uint32_t>& indexes, std::int32_t& maximum);
    // Reads the length of a disk in bytes. Logs failures at `level`.
    static bool GetDiskLength(std::uint32_t disk_number, int level, std::int64_t& length, DWORD& error);
    // Reads the complete layout of the disk, extended or classic.
    static bool GetDriveLayout(std::uint32_t disk_number, bool extended, win::ByteBuffer& layout,
                               DWORD& error);
    // Lists the disks with their partition rows, one disk row for each number from 0 to the highest. `drives`
    // (may be null) provides the drive letters for the partition rows.
    bool GetDiskDetails(const std::vector<DriveRow>* drives, std::vector<DiskRow>& disks);
    // Appends a row for every fixed volume.
    bool GetDrives(std::vector<DriveRow>& drives);
    // Inserts a placeholder for every missing disk number.
    static bool AddMissingPhysicalDisks(std::vector<DiskRow>& disks);

private:
    enum class Usability { kUsable, kUnavailable, kError };

    // The result of reading one disk: stored, left out, or the whole enumeration fails.
    enum class DiskResult { kRead, kSkipped, kFailed };

    enum class ExtentResult { kSingle, kSeveral, kFailed };

    static bool ListUsableDisks(std::vector<std::uint32_t>& indexes, std::int32_t& maximum);
    // Returns false if the disk ends the enumeration.
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

// Sets `is_gpt` to whether the disk has a GUID partition table. If the layout cannot be read, returns false
// and leaves `is_gpt` unchanged.
bool DriveIsGPT(std::uint32_t disk_number, bool& is_gpt);

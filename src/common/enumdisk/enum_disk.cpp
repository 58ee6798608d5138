#include "common/enumdisk/enum_disk.h"

#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/platform/disk_drives.h"
#include "common/record/find_rows.h"
#include "common/record/partition_rows.h"

#include <algorithm>
#include <new>

namespace {

// Logs trace lines in addition to those of Traced. Some have no matching leaving line after a failure:
// compatibility C8, C9
void Trace(const wchar_t* text) {
    GetLogger().Write(kLogTrace, text);
}

// Copies the drive letter, file system and volume name to the partition row that starts at the same offset.
void AttachDrive(const DriveRow& drive, std::vector<DiskRow>& disks) {
    VisitRowsOf(disks, drive.disk_number, [&](PartitionRow& row) {
        if (row.partition_number > 0 && row.offset == drive.offset) {
            row.drive = drive.letter;
            row.file_system = drive.file_system;
            row.volume = drive.volume;
        }
        return true;
    });
}

}  // namespace

EnumDisk::Usability EnumDisk::DiskUsable(std::uint32_t disk_number) {
    win::ByteBuffer layout;
    DWORD error = ERROR_SUCCESS;
    bool unavailable = false;
    if (GetDriveLayout(disk_number, true, layout, error)) {
        if (win::LayoutExIn(layout).PartitionStyle == PARTITION_STYLE_GPT) {
            // GPT disks are skipped: compatibility C100
            return Usability::kUnavailable;
        }
        std::int64_t length = 0;
        if (GetDiskLength(disk_number, kLogTrace, length, error)) {
            return Usability::kUsable;
        }
        unavailable = error == ERROR_NOT_READY;
    } else {
        unavailable = error == ERROR_NOT_READY || error == ERROR_BUSY || error == ERROR_FILE_NOT_FOUND;
    }
    if (unavailable) {
        GetLogger().Write(kLogWarning, L"EnumDisk::DiskUsable Drive %d: unavailable error=%u", disk_number,
                          error);
        return Usability::kUnavailable;
    }
    // Logged as a warning: compatibility C18
    GetLogger().Write(kLogWarning, L"EnumDisk::DiskUsable will return error. Drive %d: error=%u", disk_number,
                      error);
    return Usability::kError;
}

bool EnumDisk::GetPhysicalDrivesIndexes(std::vector<std::uint32_t>& indexes, std::int32_t& maximum) {
    return Traced(L"EnumDisk::GetPhysicalDrivesIndexes", [&] { return ListUsableDisks(indexes, maximum); });
}

bool EnumDisk::ListUsableDisks(std::vector<std::uint32_t>& indexes, std::int32_t& maximum) {
    bmr_common::COMEnabler com;
    if (!com.InitializeCOM(L"EnumDisk::GetPhysicalDrivesIndexes")) {
        GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes InitializeCOM error");
        return false;
    }
    maximum = -1;
    const WmiVisit visit = VisitWmiObjects(kDiskDriveQuery, [&](CWmi& drive) {
        int index = 0;
        if (!drive.GetLowInteger(L"Index", index)) {
            GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes wmi.Get failed");
            return false;
        }
        maximum = std::max(maximum, index);
        return index == kNoDiskIndex || AddIfUsable(static_cast<std::uint32_t>(index), indexes);
    });
    if (visit == WmiVisit::kNotConnected) {
        GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes wmi not initialized");
    }
    if (visit == WmiVisit::kNoneFound) {
        GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes FindFirstObject failed");
    }
    return visit == WmiVisit::kAllVisited;
}

bool EnumDisk::AddIfUsable(std::uint32_t disk_number, std::vector<std::uint32_t>& indexes) {
    switch (Traced(L"EnumDisk::DiskUsable", [&] { return DiskUsable(disk_number); })) {
        case Usability::kUsable:
            indexes.push_back(disk_number);
            return true;
        case Usability::kUnavailable:
            return true;
        case Usability::kError:
            return false;
        default:
            GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes - invalid value for a switch");
            return true;
    }
}

bool EnumDisk::GetDiskLength(std::uint32_t disk_number, int level, std::int64_t& length, DWORD& error) {
    return Traced(L"EnumDisk::GetDiskLength", [&] {
        const std::wstring name = win::PhysicalDriveName(disk_number);
        UniqueFile drive;
        // Opened for writing, although only the length is read: compatibility C137
        error = win::OpenDevice(name, {.access = GENERIC_READ | GENERIC_WRITE}, drive);
        if (error != ERROR_SUCCESS) {
            GetLogger().Write(level, L"GetDiskLength:Opening the drive %s failed error=%d", name.c_str(),
                              error);
            return false;
        }
        GetLogger().Write(kLogTrace, L"DriveName: %s", name.c_str());
        error = win::ReadLength(drive, length);
        if (error != ERROR_SUCCESS) {
            GetLogger().Write(level, L"Get length of drive %s failed error=%d", name.c_str(), error);
            return false;
        }
        GetLogger().Write(kLogTrace, L"Get length of drive %s: %I64d", name.c_str(), length);
        return true;
    });
}

bool EnumDisk::GetDriveLayout(std::uint32_t disk_number, bool extended, win::ByteBuffer& layout,
                              DWORD& error) {
    return Traced(L"EnumDisk::GetDriveLayout", [&] {
        Trace(L"Entering GetDriveLayout");
        error = ReadDriveLayout(disk_number, extended, layout);
        Trace(L"Leaving GetDriveLayout");
        return error == ERROR_SUCCESS;
    });
}

// Returns the Win32 error code. A failed allocation is not logged.
DWORD EnumDisk::ReadDriveLayout(std::uint32_t disk_number, bool extended, win::ByteBuffer& layout) {
    constexpr win::Growth kExtended{.first_bytes = 768};
    constexpr win::Growth kClassic{.first_bytes = 168};
    const std::wstring name = win::PhysicalDriveName(disk_number);
    UniqueFile drive;
    DWORD error = win::OpenDevice(name, {.access = GENERIC_READ}, drive);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"GetDriveLayout: Opening the drive %s failed error=%d 0x%x",
                          name.c_str(), error, error);
        return error;
    }
    try {
        error = extended ? win::ReadDriveLayoutEx(drive, kExtended, layout)
                         : win::ReadDriveLayout(drive, kClassic, layout);
    } catch (const std::bad_alloc&) {
        return ERROR_OUTOFMEMORY;
    }
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"Get drive layout of drive %s failed error=%d 0x%x", name.c_str(),
                          error, error);
    }
    return error;
}

bool EnumDisk::GetDriveGeometry(std::uint32_t disk_number, DISK_GEOMETRY& geometry) {
    Trace(L"Entering Get Drive Geometry");
    const std::wstring name = win::PhysicalDriveName(disk_number);
    GetLogger().Write(kLogTrace, L"Opening the Drive %s", name.c_str());
    UniqueFile drive;
    DWORD error = win::OpenDevice(name, {.access = 0}, drive);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"Opening the drive %d failed in GetDriveGeometry 0x%x", disk_number,
                          error);
        return false;
    }
    error = win::ReadDriveGeometry(drive, geometry);
    if (error != ERROR_SUCCESS) {
        GetLogger().Write(kLogError, L"GetDriveGeometry on %d IOCTL_DISK_GET_DRIVE_GEOMETRY 0x%x",
                          disk_number, error);
    }
    Trace(L"Leaving Get Drive Geometry");
    return error == ERROR_SUCCESS;
}

bool EnumDisk::GetPartitionInfo(DiskRow& disk) {
    TraceMessage(L"GetDiskDetails: Calling GetPartitionInfo for disk:%d", disk.disk_number);
    Trace(L"Entering GetPartitionInfo");
    win::ByteBuffer buffer;
    DWORD error = ERROR_SUCCESS;
    if (!GetDriveLayout(disk.disk_number, false, buffer, error)) {
        GetLogger().Write(kLogError, L"GetPartitionInfo: GetDriveLayout failed");
        return false;
    }
    BuildPartitionRows(win::ClassicPartitionsIn(buffer), static_cast<std::int64_t>(disk.size),
                       disk.partitions);
    Trace(L"Leaving GetPartitionInfo");
    return true;
}

EnumDisk::DiskResult EnumDisk::ReadDisk(std::uint32_t disk_number, DiskRow& disk) {
    DISK_GEOMETRY geometry{};
    if (!GetDriveGeometry(disk_number, geometry)) {
        GetLogger().Write(kLogError, L"%s GetDriveGeometry failed", L"EnumDisk::GetDiskDetails");
        return DiskResult::kSkipped;
    }
    disk.bytes_per_sector = geometry.BytesPerSector;
    disk.disk_number = disk_number;
    GetLogger().Write(kLogTrace, L"GetDiskDetails: Calling GetDiskLength for disk:%d", disk_number);
    std::int64_t length = 0;
    DWORD error = ERROR_SUCCESS;
    if (!GetDiskLength(disk_number, kLogError, length, error)) {
        return DiskResult::kFailed;
    }
    if (length == 0) {
        GetLogger().Write(kLogTrace, L"GetDiskDetails disk %d has size 0 - ignoring", disk_number);
        return DiskResult::kSkipped;
    }
    disk.size = static_cast<std::uint64_t>(length);
    if (!GetPartitionInfo(disk)) {
        return DiskResult::kFailed;
    }
    SortDiskPartitionNumbers(disk);
    return DiskResult::kRead;
}

bool EnumDisk::ReadDisks(std::vector<DiskRow>& disks) {
    std::vector<std::uint32_t> indexes;
    std::int32_t maximum = -1;
    const bool listed = GetPhysicalDrivesIndexes(indexes, maximum);
    GetLogger().Write(kLogTrace, L"GetDiskDetails: No Of Disks: %d", static_cast<int>(indexes.size()));
    if (!listed) {
        return false;
    }
    for (const std::uint32_t index : indexes) {
        DiskRow disk;
        const DiskResult result = ReadDisk(index, disk);
        if (result == DiskResult::kFailed) {
            return false;
        }
        if (result == DiskResult::kRead) {
            disks.push_back(std::move(disk));
        }
    }
    return true;
}

bool EnumDisk::GetDiskDetails(const std::vector<DriveRow>* drives, std::vector<DiskRow>& disks) {
    return Traced(L"EnumDisk::GetDiskDetails", [&] {
        Trace(L"Entering GetDiskDetails");
        bool succeeded = ReadDisks(disks);
        if (succeeded && drives != nullptr) {
            for (const DriveRow& drive : *drives) {
                AttachDrive(drive, disks);
            }
        }
        Trace(L"Leaving GetDiskDetails");
        succeeded = succeeded && AddMissingPhysicalDisks(disks);
        if (!succeeded) {
            GetLogger().Write(kLogError, L"Error occurred in EnumDisk::GetDiskDetails");
        }
        return succeeded;
    });
}

bool EnumDisk::AddMissingPhysicalDisks(std::vector<DiskRow>& disks) {
    return Traced(L"EnumDisk::AddMissingPhysicalDisks", [&] {
        std::vector<std::uint32_t> indexes;
        std::int32_t maximum = -1;
        // Lists and tests the disks again: compatibility C136
        if (!GetPhysicalDrivesIndexes(indexes, maximum)) {
            return false;
        }
        if (maximum > kHighestDiskNumber) {
            GetLogger().Write(kLogError, L"%s disk number %d is too large",
                              L"EnumDisk::AddMissingPhysicalDisks", maximum);
            return false;
        }
        InsertFakeDisks(maximum, disks);
        return true;
    });
}

bool DriveIsGPT(std::uint32_t disk_number, bool& is_gpt) {
    return Traced(L"DriveIsGPT", [&] {
        win::ByteBuffer layout;
        DWORD error = ERROR_SUCCESS;
        if (!EnumDisk::GetDriveLayout(disk_number, true, layout, error)) {
            return false;
        }
        is_gpt = win::LayoutExIn(layout).PartitionStyle == PARTITION_STYLE_GPT;
        return true;
    });
}

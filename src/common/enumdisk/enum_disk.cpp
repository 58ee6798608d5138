#include "common/enumdisk/enum_disk.h"

#include "common/enumdisk/device_files.h"
#include "common/enumdisk/partition_rows.h"
#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/platform/device_control.h"
#include "common/platform/wmi.h"

#include <algorithm>
#include <new>

namespace {

constexpr int kNoIndex = 255;  // of a drive without a disk number; compatibility C101

// Traces beside those of Traced, some without an end after a failure: compatibility C8, C9
void Trace(const wchar_t* text) {
    GetLogger().Write(kLogTrace, text);
}

// A placeholder list runs to the highest number: one past this is no machine's, and the enumeration fails.
constexpr std::int32_t kHighestDiskNumber = 65'535;

const DRIVE_LAYOUT_INFORMATION_EX& LayoutEx(const win::ByteBuffer& buffer) {
    return *reinterpret_cast<const DRIVE_LAYOUT_INFORMATION_EX*>(buffer.data());
}

// Gives a partition row what is known of the volume that starts where it starts.
void AttachDrive(const DriveRow& drive, std::vector<DiskRow>& disks) {
    for (DiskRow& disk : disks) {
        if (disk.disk_number != drive.disk_number) {
            continue;
        }
        for (PartitionRow& row : disk.partitions) {
            if (row.partition_number > 0 && row.offset == drive.offset) {
                row.drive = drive.letter;
                row.file_system = drive.file_system;
                row.volume = drive.volume;
            }
        }
    }
}

}  // namespace

EnumDisk::Usability EnumDisk::DiskUsable(std::uint32_t disk_number) {
    win::ByteBuffer layout;
    DWORD error = ERROR_SUCCESS;
    bool unavailable = false;
    if (GetDriveLayout(disk_number, true, layout, error)) {
        if (LayoutEx(layout).PartitionStyle == PARTITION_STYLE_GPT) {
            // GPT disks are left out: compatibility C100
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

int EnumDisk::GetPhysicalDrivesIndexes(std::vector<std::uint32_t>& indexes, std::int32_t& maximum) {
    return Traced(L"EnumDisk::GetPhysicalDrivesIndexes", [&] { return ListUsableDisks(indexes, maximum); });
}

int EnumDisk::ListUsableDisks(std::vector<std::uint32_t>& indexes, std::int32_t& maximum) {
    bmr_common::COMEnabler com;
    if (!com.InitializeCOM(L"EnumDisk::GetPhysicalDrivesIndexes")) {
        GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes InitializeCOM error");
        return 0;
    }
    maximum = -1;
    CWmi wmi(L"Select * from Win32_DiskDrive");
    if (!wmi.initialized()) {
        GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes wmi not initialized");
        return 0;
    }
    if (!wmi.FindFirstObject()) {
        GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes FindFirstObject failed");
        return 0;
    }
    do {
        int index = 0;
        if (!wmi.GetLowInteger(L"Index", index)) {
            GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes wmi.Get failed");
            return 0;
        }
        maximum = std::max(maximum, index);
        if (index == kNoIndex) {
            continue;
        }
        switch (
            Traced(L"EnumDisk::DiskUsable", [&] { return DiskUsable(static_cast<std::uint32_t>(index)); })) {
            case Usability::kUsable:
                indexes.push_back(static_cast<std::uint32_t>(index));
                break;
            case Usability::kUnavailable:
                break;
            case Usability::kError:
                return 0;
            default:
                GetLogger().Write(kLogError, L"GetPhysicalDrivesIndexes - invalid value for a switch");
                break;
        }
    } while (wmi.FindNextObject());
    return 1;
}

bool EnumDisk::GetDiskLength(std::uint32_t disk_number, int level, std::int64_t& length, DWORD& error) {
    return Traced(L"EnumDisk::GetDiskLength", [&] {
        const std::wstring name = PhysicalDriveName(disk_number);
        error = ERROR_SUCCESS;
        // Opened for writing, although it is only asked: compatibility C137
        const UniqueFile drive = OpenDevice(name, GENERIC_READ | GENERIC_WRITE);
        if (!drive) {
            error = win::LastFailure();
            GetLogger().Write(level, L"GetDiskLength:Opening the drive %s failed error=%d", name.c_str(),
                              error);
            return false;
        }
        GetLogger().Write(kLogTrace, L"DriveName: %s", name.c_str());
        GET_LENGTH_INFORMATION information{};
        DWORD returned = 0;
        error = win::SendControl(drive, IOCTL_DISK_GET_LENGTH_INFO, nullptr, 0, &information,
                                 sizeof(information), returned);
        if (error == ERROR_SUCCESS && (returned != sizeof(information) || information.Length.QuadPart < 0)) {
            error = ERROR_INVALID_DATA;
        }
        if (error != ERROR_SUCCESS) {
            GetLogger().Write(level, L"Get length of drive %s failed error=%d", name.c_str(), error);
            return false;
        }
        length = information.Length.QuadPart;
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

// Returns the Win32 error. A failed allocation has no line of its own.
DWORD EnumDisk::ReadDriveLayout(std::uint32_t disk_number, bool extended, win::ByteBuffer& layout) {
    constexpr std::size_t kFirstExtendedBytes = 768;
    constexpr std::size_t kFirstClassicBytes = 168;
    const std::wstring name = PhysicalDriveName(disk_number);
    const UniqueFile drive = OpenDevice(name, GENERIC_READ);
    if (!drive) {
        const DWORD error = win::LastFailure();
        GetLogger().Write(kLogError, L"GetDriveLayout: Opening the drive %s failed error=%d 0x%x",
                          name.c_str(), error, error);
        return error;
    }
    DWORD error = ERROR_SUCCESS;
    try {
        error = extended
                    ? win::ReadGrowingControl(drive, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, kFirstExtendedBytes,
                                              ERROR_INSUFFICIENT_BUFFER, layout, win::IsWholeLayoutEx)
                    : win::ReadGrowingControl(drive, IOCTL_DISK_GET_DRIVE_LAYOUT, kFirstClassicBytes,
                                              ERROR_INSUFFICIENT_BUFFER, layout, win::IsWholeLegacyLayout);
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
    const std::wstring name = PhysicalDriveName(disk_number);
    GetLogger().Write(kLogTrace, L"Opening the Drive %s", name.c_str());
    const UniqueFile drive = OpenDevice(name, 0);
    if (!drive) {
        GetLogger().Write(kLogError, L"Opening the drive %d failed in GetDriveGeometry 0x%x", disk_number,
                          win::LastFailure());
        return false;
    }
    DWORD returned = 0;
    DWORD error = win::SendControl(drive, IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0, &geometry,
                                   sizeof(geometry), returned);
    if (error == ERROR_SUCCESS && returned != sizeof(geometry)) {
        error = ERROR_INVALID_DATA;
    }
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
    const auto& layout = *reinterpret_cast<const DRIVE_LAYOUT_INFORMATION*>(buffer.data());
    const PARTITION_INFORMATION* const first = layout.PartitionEntry;
    BuildPartitionRows({first, first + layout.PartitionCount}, static_cast<std::int64_t>(disk.size),
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
    const bool listed = GetPhysicalDrivesIndexes(indexes, maximum) != 0;
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

int EnumDisk::GetDiskDetails(const std::vector<DriveRow>* drives, std::vector<DiskRow>& disks) {
    return Traced(L"EnumDisk::GetDiskDetails", [&] {
        Trace(L"Entering GetDiskDetails");
        bool succeeded = ReadDisks(disks);
        if (succeeded && drives != nullptr) {
            for (const DriveRow& drive : *drives) {
                AttachDrive(drive, disks);
            }
        }
        Trace(L"Leaving GetDiskDetails");
        succeeded = succeeded && AddMissingPhysicalDisks(disks) != 0;
        if (!succeeded) {
            GetLogger().Write(kLogError, L"Error occurred in EnumDisk::GetDiskDetails");
        }
        return succeeded ? 1 : 0;
    });
}

int EnumDisk::AddMissingPhysicalDisks(std::vector<DiskRow>& disks) {
    return Traced(L"EnumDisk::AddMissingPhysicalDisks", [&] {
        std::vector<std::uint32_t> indexes;
        std::int32_t maximum = -1;
        // Lists and tests the disks again: compatibility C136
        if (GetPhysicalDrivesIndexes(indexes, maximum) == 0) {
            return 0;
        }
        if (maximum > kHighestDiskNumber) {
            GetLogger().Write(kLogError, L"%s disk number %d is too large",
                              L"EnumDisk::AddMissingPhysicalDisks", maximum);
            return 0;
        }
        InsertFakeDisks(maximum, disks);
        return 1;
    });
}

bool DriveIsGPT(std::uint32_t disk_number, bool& is_gpt) {
    return Traced(L"DriveIsGPT", [&] {
        win::ByteBuffer layout;
        DWORD error = ERROR_SUCCESS;
        if (!EnumDisk::GetDriveLayout(disk_number, true, layout, error)) {
            return false;
        }
        is_gpt = LayoutEx(layout).PartitionStyle == PARTITION_STYLE_GPT;
        return true;
    });
}

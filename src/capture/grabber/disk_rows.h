#pragma once

#include "common/disk/device_manager.h"
#include "common/record/rows.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

// Converts the disks of the disk model to rows of the flat record.

// Stores the largest disk number up to 65,535 in `maximum`; logs one warning for each larger number. If there
// is no other disk, logs an error line and returns false.
bool GetMaxPhysicalDiskId(const bmr_common::DeviceManager& device_manager, std::uint32_t& maximum);

// Fills the row of an existing disk; its partitions have the system's numbers. If the partition style is not
// supported, logs one error line and returns false.
bool AddExistingDiskInformation(const bmr_common::DiskDriveManager& disk, DiskRow& row);

// Returns the placeholder row for a disk number without a disk.
DiskRow AddUnknownDiskInformation(std::uint32_t disk_number);

// Numbers the partitions of every disk in the order of their offsets. The row of a whole disk keeps the
// number 0.
void FinishDiskRows(std::vector<DiskRow>& disks);

// An extent of a volume, and the properties of the volume to be copied to the partition row.
struct VolumeOnDisk {
    std::uint32_t disk_number = 0;
    std::int64_t offset = 0;  // bytes
    std::int64_t length = 0;  // bytes
    std::wstring letter;
    std::wstring file_system;
    const wchar_t* volume_name = L"";  // for log lines only; not owned
};

// Copies the volume's letter and file system to the partition row that contains the extent. If no row
// contains the whole extent, logs one warning and returns false.
bool SetPartitionVolumeLetterFileSystem(const VolumeOnDisk& volume, std::vector<DiskRow>& disks);

}  // namespace orvane

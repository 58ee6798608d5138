#pragma once

#include "common/disk/device_manager.h"
#include "common/record/rows.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

// The conversion of the disk model's disks into rows of the flat record.

// The largest number among the disks that are there; false, after a level 2 line, when there are none.
bool GetMaxPhysicalDiskId(const bmr_common::DeviceManager& device_manager, std::uint32_t& maximum);

// Fills the row of a disk that is there, its partitions still by the system's numbers; false, after a level 2
// line, for an unsupported partition style.
bool AddExistingDiskInformation(const bmr_common::DiskDriveManager& disk, DiskRow& row);

// The row of a number without a disk.
DiskRow AddUnknownDiskInformation(std::uint32_t disk_number);

// Numbers the partitions of every disk in the order of their offsets. The row of a whole disk keeps its 0.
void FinishDiskRows(std::vector<DiskRow>& disks);

// A run of bytes of a volume, and what the partition row that it lies in is told of the volume.
struct VolumeOnDisk {
    std::uint32_t disk_number = 0;
    std::int64_t offset = 0;  // bytes
    std::int64_t length = 0;  // bytes
    std::wstring letter;
    std::wstring file_system;
    const wchar_t* volume_name = L"";  // for the log; not kept
};

// Gives the partition row that contains the run the volume's letter and file system; false, after a level 3
// line, when no row contains it or one contains only a part.
bool SetPartitionVolumeLetterFileSystem(const VolumeOnDisk& volume, std::vector<DiskRow>& disks);

}  // namespace orvane

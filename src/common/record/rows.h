#pragma once

#include "common/windows.h"

#include <cstdint>
#include <string>
#include <vector>

// The flat rows of the environment record.

// One row of a disk's partition list: a partition, or a gap between partitions.
struct PartitionRow {
    std::int64_t length = 0;       // bytes
    std::int64_t offset = 0;       // bytes
    std::int64_t length_copy = 0;  // a copy of length
    // Never set: compatibility C91
    std::int32_t hidden = 0;
    bool active = false;     // the boot indicator, written as "primary": compatibility C90
    std::wstring kind;       // "Primary", "Logical", "Unallocated" or "Free space"
    std::wstring operation;  // "Existing" for partitions, else the kind
    std::wstring drive;      // drive letter
    std::wstring file_system;
    std::wstring volume;
    std::int32_t partition_number = -1;  // -1 gap, 0 whole disk: compatibility C102
    std::uint8_t mbr_type = 0;
    std::int32_t partition_style = 2;  // 0 MBR, 1 GPT, 2 raw
    GUID gpt_type{};
    GUID gpt_id{};
};

// One physical disk.
struct DiskRow {
    std::uint64_t size = 0;  // bytes; 500 for a placeholder
    std::uint32_t disk_number = 0;
    std::uint32_t bytes_per_sector = 0;
    // The flat enumerator does not set it: compatibility C104
    std::int32_t partition_style = 2;  // 0 MBR, 1 GPT, 2 raw
    std::wstring interface_type;
    GUID disk_guid{};
    std::vector<PartitionRow> partitions;  // in disk order
};

// A fixed volume, as found by the enumeration of drives.
struct DriveRow {
    std::int64_t disk_number = -1;  // both -1 if the volume does not have exactly one extent
    std::int64_t offset = -1;       // bytes
    std::wstring volume;            // volume GUID path
    std::wstring letter;            // "C:", or empty
    std::wstring file_system;
};

// A range of bytes on one disk that belongs to a volume.
class DiskExtent {
public:
    DiskExtent() = default;
    virtual ~DiskExtent() = default;
    DiskExtent(const DiskExtent&) = default;
    DiskExtent& operator=(const DiskExtent&) = default;
    DiskExtent(DiskExtent&&) = default;
    DiskExtent& operator=(DiskExtent&&) = default;

    std::uint64_t m_offsetPartition = 0;      // bytes
    std::uint64_t m_Size = 0;                 // bytes
    std::uint64_t m_FileSystemUsedSpace = 0;  // bytes
    std::wstring m_GUID;
    std::uint32_t m_dwDiskSignature = 0;
    GUID disk_guid{};
    std::int32_t m_PartitionNumber = 0;
    std::uint32_t m_DiskNumber = 0;
};

// A fixed volume. The inherited extent fields describe its first or only extent.
class Volume : public DiskExtent {
public:
    std::vector<DiskExtent> extents;  // in the order reported by the volume
    std::wstring Name;
    std::wstring DeviceName;
    std::wstring VolumeLetter;
    std::wstring Label;
    std::uint32_t Serial = 0;
    std::wstring FileSystem;
    std::uint32_t Flags = 0;
    bool SystemVolume = false;
    bool BootVolume = false;
    bool Dynamic = false;
    std::uint32_t BlockSize = 0;
};

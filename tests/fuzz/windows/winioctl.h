#pragma once

#include <cstdint>

enum PARTITION_STYLE { PARTITION_STYLE_MBR, PARTITION_STYLE_GPT, PARTITION_STYLE_RAW };

constexpr std::uint8_t PARTITION_ENTRY_UNUSED = 0x00;
constexpr std::uint8_t PARTITION_FAT_16 = 0x04;
constexpr std::uint8_t PARTITION_EXTENDED = 0x05;
constexpr std::uint8_t PARTITION_LDM = 0x42;

// The file systems FAT, FAT32 and NTFS, also hidden by the flags of older fault-tolerant sets.
inline bool IsRecognizedPartition(std::uint8_t type) {
    const unsigned plain = type & ~0xC0U;
    const bool fat =
        plain == 0x01 || plain == 0x04 || plain == 0x06 || plain == 0x0B || plain == 0x0C || plain == 0x0E;
    return fat || plain == 0x07;
}
inline bool IsContainerPartition(std::uint8_t type) {
    return type == 0x05 || type == 0x0F;
}

struct DISK_INT13_INFO {
    std::uint16_t DriveSelect;
    std::uint32_t MaxCylinders;
    std::uint16_t SectorsPerTrack;
    std::uint16_t MaxHeads;
    std::uint16_t NumberDrives;
};

struct DISK_EX_INT13_INFO {
    std::uint16_t ExBufferSize;
    std::uint16_t ExFlags;
    std::uint32_t ExCylinders;
    std::uint32_t ExHeads;
    std::uint32_t ExSectorsPerTrack;
    std::uint64_t ExSectorsPerDrive;
    std::uint16_t ExSectorSize;
    std::uint16_t ExReserved;
};

enum : std::uint32_t {
    IOCTL_DISK_GET_DRIVE_GEOMETRY = 0x00070000,
    IOCTL_DISK_GET_PARTITION_INFO = 0x00074004,
    IOCTL_DISK_GET_DRIVE_LAYOUT = 0x0007400C,
    IOCTL_DISK_IS_WRITABLE = 0x00070024,
    IOCTL_DISK_GET_PARTITION_INFO_EX = 0x00070048,
    IOCTL_DISK_GET_DRIVE_LAYOUT_EX = 0x00070050,
    IOCTL_DISK_SET_DRIVE_LAYOUT_EX = 0x0007C054,
    IOCTL_DISK_CREATE_DISK = 0x0007C058,
    IOCTL_DISK_GET_LENGTH_INFO = 0x0007405C,
    IOCTL_DISK_GET_DRIVE_GEOMETRY_EX = 0x000700A0,
    IOCTL_DISK_DELETE_DRIVE_LAYOUT = 0x0007C100,
    IOCTL_DISK_UPDATE_PROPERTIES = 0x00070140,
    IOCTL_STORAGE_GET_DEVICE_NUMBER = 0x002D1080,
    IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS = 0x00560000
};

#pragma once

// The control codes as the calls of questions name them.
namespace recorder {

inline constexpr const char* kGeometry = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY";
inline constexpr const char* kGeometryEx = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX";
inline constexpr const char* kLayout = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT";
inline constexpr const char* kLayoutEx = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX";
inline constexpr const char* kLength = "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO";
inline constexpr const char* kPartition = "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO";
inline constexpr const char* kPartitionEx = "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX";
inline constexpr const char* kDeviceNumber = "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER";
inline constexpr const char* kExtents = "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS";

}  // namespace recorder

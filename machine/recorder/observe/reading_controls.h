#pragma once

#include "common/windows.h"

#include <string_view>

namespace recorder {

// A device control that only reads.
struct ReadingControl {
    std::string_view call;
    DWORD code;
};

#define ORVANE_READING_CONTROL(code)   \
    ReadingControl {                   \
        "DeviceIoControl:" #code, code \
    }
inline constexpr ReadingControl kReadingControls[] = {
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_DRIVE_GEOMETRY),
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX),
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_DRIVE_LAYOUT),
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_DRIVE_LAYOUT_EX),
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_LENGTH_INFO),
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_PARTITION_INFO),
    ORVANE_READING_CONTROL(IOCTL_DISK_GET_PARTITION_INFO_EX),
    ORVANE_READING_CONTROL(IOCTL_DISK_IS_WRITABLE),
    ORVANE_READING_CONTROL(IOCTL_STORAGE_GET_DEVICE_NUMBER),
    ORVANE_READING_CONTROL(IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS),
};
#undef ORVANE_READING_CONTROL

// Null if the call is none of them.
constexpr const ReadingControl* FindReadingControl(std::string_view call) {
    for (const ReadingControl& control : kReadingControls) {
        if (control.call == call) {
            return &control;
        }
    }
    return nullptr;
}

}  // namespace recorder

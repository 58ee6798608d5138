#pragma once

#include "common/windows.h"

#include <string>

namespace machine {

// "IOCTL_DISK_GET_LENGTH_INFO"; an unknown code in hexadecimal.
std::string ControlName(DWORD code);

// The call as the log and the described errors name it: "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO".
std::string ControlCallName(DWORD code);

// What described errors can stand on.
enum class CallScope : unsigned { kDisk = 1, kVolume = 2, kDirectory = 4, kWmiClass = 8, kMachine = 16 };

// Whether the text names a call that such an object, or the machine, can fail, with or without the part
// after a colon.
bool IsCallOf(CallScope scope, const std::string& name);

}  // namespace machine

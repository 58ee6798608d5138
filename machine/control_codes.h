#pragma once

#include "common/windows.h"

#include <cstdint>
#include <string>
#include <vector>

namespace machine {

// The name of a control code ("IOCTL_DISK_GET_LENGTH_INFO"); hexadecimal for an unknown code.
std::string ControlName(DWORD code);

// The name used in the call log and for described errors: "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO".
std::string ControlCallName(DWORD code);

// The kinds of objects that can have described errors.
enum class CallScope : unsigned {
    kDisk = 1,
    kVolume = 2,
    kDirectory = 4,
    kWmiClass = 8,
    kDosDevice = 16,
    kMachine = 32
};

// The calls that do not return if an object of this kind does not answer.
std::vector<std::string> BlockingCalls(CallScope scope);

// The code with which the simulation answers a call that does not return: error 121, as its family has it.
std::uint32_t BlockedCode(const std::string& name);

// True if `name` is a call that can fail in this scope. The name may have a suffix: a colon and a control
// code.
bool IsCallOf(CallScope scope, const std::string& name);

}  // namespace machine

#pragma once

#include <cstdint>

// How the machine was started.
enum FirmwareKind : std::uint32_t {
    kFirmwareUnknown = 0,
    kFirmwareBios = 1,
    kFirmwareUefi = 2,
};

// How the machine was started: the system's own answer where it can tell, even if that is a failure, else
// that of DetectFirmwareType (compatibility C60). False where it is not known; `type` is then meaningless.
bool FindFirmwareType(std::uint32_t& type);

// Finds out by probing the firmware's variables, for systems that do not tell the firmware type themselves.
// Writes `type` on every path; false, after one level 2 line, when the answer is not known.
bool DetectFirmwareType(std::uint32_t& type);

#pragma once

#include <cstdint>

// How the machine was started.
enum FirmwareKind : std::uint32_t {
    kFirmwareUnknown = 0,
    kFirmwareBios = 1,
    kFirmwareUefi = 2,
};

// Finds out by probing the firmware's variables, for systems that do not tell the firmware type themselves.
// Writes `type` on every path; false, after one level 2 line, when the answer is not known.
bool DetectFirmwareType(std::uint32_t& type);

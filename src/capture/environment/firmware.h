#pragma once

#include <cstdint>

// The firmware that started the machine.
enum FirmwareKind : std::uint32_t {
    kFirmwareUnknown = 0,
    kFirmwareBios = 1,
    kFirmwareUefi = 2,
};

// Finds the firmware type with GetFirmwareType, whose failure is final (compatibility C60), or with
// DetectFirmwareType if the system lacks that function. Returns false on failure; `type` is then meaningless.
bool FindFirmwareType(std::uint32_t& type);

// Finds the firmware type by reading a firmware variable, for systems without GetFirmwareType. Always sets
// `type`. If the type remains unknown, logs one error line and returns false.
bool DetectFirmwareType(std::uint32_t& type);

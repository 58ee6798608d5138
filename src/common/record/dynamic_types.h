#pragma once

#include "common/windows.h"

#include <cstdint>

// The partition types of dynamic disks, used by the logical disk manager (LDM).

// The type in a master boot record.
inline constexpr std::uint8_t kLdmMbrType = 0x42;

// The types in a GUID partition table: the LDM database, and the space for the LDM volumes.
inline constexpr GUID kLdmMetadataPartition = {
    0x5808C8AA, 0x7E8F, 0x42E0, {0x85, 0xD2, 0xE1, 0xE9, 0x04, 0x34, 0xCF, 0xB3}};
inline constexpr GUID kLdmDataPartition = {
    0xAF9B60A0, 0x1431, 0x4F62, {0xBC, 0x68, 0x33, 0x11, 0x71, 0x4A, 0x69, 0xAD}};

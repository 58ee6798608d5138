#pragma once

#include <string_view>

// Names that every Windows has, and that tell nothing about its owner. They are not replaced.
namespace recorder {

// A part of the name of a device or link: "Device", "HarddiskVolume3", "C:".
bool IsKnownDeviceName(std::wstring_view part);

// A folder: "Windows", "Users".
bool IsKnownFolder(std::wstring_view part);

// The name of a GPT partition: "Basic data partition".
bool IsKnownPartitionName(std::wstring_view name);

}  // namespace recorder

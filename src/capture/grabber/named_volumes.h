#pragma once

#include "common/volume/volume_manager.h"

#include <string>
#include <utility>
#include <vector>

namespace orvane {

// A volume and a GUID text that is made for this capture alone.
using NamedVolume = std::pair<bmr_common::VolumePtr, std::wstring>;

// Appends every volume of the manager, in its order, with a fresh GUID text. False, after a level 2 line,
// when the system cannot make one.
bool NameVolumes(const bmr_common::VolumeManager& volume_manager, std::vector<NamedVolume>& volumes);

}  // namespace orvane

#pragma once

#include "common/volume/volume_manager.h"

#include <string>
#include <utility>
#include <vector>

namespace orvane {

// A volume and the text of a GUID that is created for this capture.
using NamedVolume = std::pair<bmr_common::VolumePtr, std::wstring>;

// Appends every volume of the manager, in the manager's order, with a new GUID. If the system cannot create a
// GUID, logs one error line and returns false.
bool NameVolumes(const bmr_common::VolumeManager& volume_manager, std::vector<NamedVolume>& volumes);

}  // namespace orvane

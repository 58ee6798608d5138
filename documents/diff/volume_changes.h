#pragma once

#include "documents/diff/change.h"
#include "documents/diff/disk_identity.h"
#include "documents/diff/fields.h"
#include "documents/diff/volume_identity.h"

#include <string>
#include <vector>

namespace documents::diff {

// `id` names the volume in the changes. `disk_told` says that a disk of the volume has become dynamic or
// basic, which the volume then does not repeat.
std::vector<Change> CompareVolume(const VolumePair& pair, const std::string& id, const DiskPairs& disks,
                                  bool disk_told, const CompareRules& rules);

}  // namespace documents::diff

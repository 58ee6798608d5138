#pragma once

#include "common/record/rows.h"

#include <vector>

// Replaces `volumes` by the fixed volumes of the machine, numbered by assignPartitionNumbers and completed by
// assignDriveDetails. A volume that cannot be described is left out after a line. False when the system could
// not be asked for volumes at all.
bool getFixedVolumes(std::vector<::Volume>& volumes);

// Renumbers the partitions of the volumes and of their extents, disk by disk in order of their offsets,
// counting only offsets that belong to the volumes given.
void assignPartitionNumbers(std::vector<::Volume>& volumes);

// Gives the volumes and their extents the signature and identifier of their disks, and marks those on dynamic
// disks.
void assignDriveDetails(std::vector<::Volume>& volumes);

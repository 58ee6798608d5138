#pragma once

#include "common/record/rows.h"

#include <vector>

// Replaces `volumes` with the fixed volumes of the machine, then calls assignPartitionNumbers and
// assignDriveDetails. A volume that cannot be read is logged and left out. Returns false if the volumes
// cannot be enumerated at all.
bool getFixedVolumes(std::vector<::Volume>& volumes);

// Sets the partition numbers of the volumes and of their extents: on each disk in order of offset, counting
// only the offsets of these volumes.
void assignPartitionNumbers(std::vector<::Volume>& volumes);

// Sets the signature and the GUID of the disk for each volume and extent, and marks volumes on dynamic disks.
void assignDriveDetails(std::vector<::Volume>& volumes);

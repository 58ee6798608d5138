#pragma once

#include "common/record/rows.h"

#include <vector>

// Sets the interface type ("SCSI", "IDE") of each disk row to the one that WMI reports. It stays empty for
// disks without one. An error does not fail the capture.
void AssignInterfaceTypes(std::vector<DiskRow>& disks);

#pragma once

#include "common/record/rows.h"

#include <vector>

// Gives the disk rows the interface ("SCSI", "IDE") that the system's management information names for their
// disks. Rows that it names none for keep an empty text; nothing here fails a capture.
void AssignInterfaceTypes(std::vector<DiskRow>& disks);

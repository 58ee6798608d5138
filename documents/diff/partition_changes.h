#pragma once

#include "documents/diff/change.h"
#include "documents/diff/disk_identity.h"
#include "documents/diff/fields.h"

#include <vector>

namespace documents::diff {

// Of the partitions of a disk, one partition after the other. Empty if one of the documents leaves the table
// out.
std::vector<Change> ComparePartitions(const DiskPair& disk, const CompareRules& rules);

}  // namespace documents::diff

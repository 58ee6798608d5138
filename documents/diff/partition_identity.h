#pragma once

#include "documents/model/disk.h"

#include <vector>

namespace documents::diff {

struct PartitionPair {
    const Partition* before = nullptr;  // null: added
    const Partition* after = nullptr;   // null: removed
    bool by_id = false;                 // else by the offset
};

// The partitions of two documents of one disk, in the order of their offsets; those that were added come
// last. Both documents must have its table. Refers to the disks.
std::vector<PartitionPair> PairPartitions(const Disk& before, const Disk& after);

}  // namespace documents::diff

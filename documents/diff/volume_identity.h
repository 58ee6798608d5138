#pragma once

#include "documents/diff/disk_identity.h"
#include "documents/model/machine.h"

#include <string_view>
#include <vector>

namespace documents::diff {

struct VolumePair {
    const Volume* before = nullptr;  // null: added
    const Volume* after = nullptr;   // null: removed
    bool by_place = false;
    // What the guess rests on: that of the disk on which the place is; empty: it is none.
    std::string_view guess;
};

// All volumes in the order of `before`; those that were added come last. Refers to the machines.
std::vector<VolumePair> PairVolumes(const Machine& before, const Machine& after, const DiskPairs& disks);

}  // namespace documents::diff

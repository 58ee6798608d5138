#pragma once

#include "documents/diff/change.h"
#include "documents/model/machine.h"

#include <vector>

namespace documents::diff {

struct CompareOptions {
    bool all = false;  // free space, device names and the like too
};

// What changed between two documents, in the order of docs/diff.md. Empty: nothing.
std::vector<Change> Compare(const Machine& before, const Machine& after, const CompareOptions& options);

}  // namespace documents::diff

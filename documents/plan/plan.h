#pragma once

#include "documents/model/machine.h"
#include "documents/plan/target.h"
#include "documents/verify/verify.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace documents {

struct PlanRequest {
    std::set<std::uint32_t> disks;  // empty: all
    TargetRequests targets;
};

struct PlanFile {
    std::string name;  // "disk0.sfdisk", "plan.md"
    std::string text;
};

struct Plan {
    std::vector<Finding> refusals;  // of targets; if there are any, the plan has no files
    std::vector<Finding> losses;    // what cannot be made again
    std::vector<PlanFile> files;
};

// How the disks of the document are made again: a script for each, and a page for people. Looks at the
// targets and writes nothing. Throws TargetError, also for a disk that the document does not have.
Plan PlanOf(const Machine& machine, const PlanRequest& request);

}  // namespace documents

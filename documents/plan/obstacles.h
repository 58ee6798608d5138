#pragma once

#include "documents/plan/table.h"
#include "documents/plan/target.h"
#include "documents/verify/rules.h"

#include <optional>
#include <vector>

// What cannot be made again, and why a target is refused. Each has a code that docs/reasons.md explains.
namespace documents {

// All codes of plans, in their order.
std::vector<FindingCode> PlanCodes();

// Why the disk's table cannot be made; none if it can. `verified` are the findings of Verify. An error if
// volumes lie on the disk, else a note.
std::optional<Finding> ObstacleOf(const Subject& subject, const Disk& disk,
                                  const std::vector<Finding>& verified);

// Disks that the document leaves out although volumes lie on them.
std::vector<Finding> MissingDisks(const Subject& subject);

// What is not made again beside the table: dynamic volumes, and volumes in no partition.
std::vector<Finding> LossesOn(const Subject& subject, const Disk& disk);

// Why the disk cannot be made on that target.
std::vector<Finding> RefusalsOf(const Disk& disk, const Table& table, const Target& target);
Finding SameTargetRefusal(const Disk& disk, const Disk& other, const Target& target);

}  // namespace documents

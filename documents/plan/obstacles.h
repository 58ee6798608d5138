#pragma once

#include "documents/plan/disk_plan.h"
#include "documents/verify/rules.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

// What cannot be made again, and why a target is refused. Each has a code that docs/reasons.md explains.
namespace documents {

// All codes of plans, in their order.
std::vector<FindingCode> PlanCodes();

// Why the disk's table cannot be made; none if it can. `verified` are the findings of Verify. An error if
// volumes lie on the disk, else a note.
std::optional<Finding> ObstacleOf(const Subject& subject, const Disk& disk,
                                  const std::vector<Finding>& verified);

// The disks that the document does not have although volumes lie on them; in format 1 also the numbers that
// may be those of disks which it leaves out.
std::set<std::uint32_t> LeftOutDisks(const Subject& subject);

// The same as findings, of the chosen disks only, or of all if none is chosen.
std::vector<Finding> MissingDisks(const Subject& subject, const std::set<std::uint32_t>& chosen);

// The volumes of fixed disks whose place the document does not tell.
std::vector<Finding> UnplacedVolumes(const std::vector<Finding>& verified);

// What is not made again beside the table: dynamic volumes, volumes in no partition, ids that are there
// twice.
std::vector<Finding> LossesOn(const Subject& subject, const DiskPlan& plan);

// Why the disk cannot be made on its target. With an obstacle the table is unknown: then only whether the
// target is blank.
std::vector<Finding> RefusalsOf(const DiskPlan& plan);
Finding SameTargetRefusal(const Disk& disk, const Disk& other, const Target& target);

}  // namespace documents

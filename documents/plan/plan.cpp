#include "documents/plan/plan.h"

#include "documents/model/lookup.h"
#include "documents/plan/disk_plan.h"
#include "documents/plan/obstacles.h"
#include "documents/plan/page.h"
#include "documents/plan/script.h"

#include <set>

namespace documents {

namespace {

void RequireDisks(const Subject& subject, const PlanRequest& request) {
    const auto refuse = [](std::uint32_t number) {
        throw TargetError("the document has no disk " + std::to_string(number));
    };
    const std::set<std::uint32_t> left_out = LeftOutDisks(subject);
    for (const std::uint32_t number : request.disks) {
        if (FindDisk(subject.machine, number) == nullptr && !left_out.contains(number)) {
            refuse(number);
        }
    }
    for (const auto& [number, target] : request.targets) {
        if (FindDisk(subject.machine, number) == nullptr) {
            refuse(number);
        }
        if (!request.disks.empty() && !request.disks.contains(number)) {
            throw TargetError("disk " + std::to_string(number) + " has a target, but is not to be planned");
        }
    }
}

DiskPlan PlanDisk(const Subject& subject, const Disk& disk, const PlanRequest& request,
                  const std::vector<Finding>& verified) {
    DiskPlan plan;
    plan.disk = &disk;
    plan.obstacle = ObstacleOf(subject, disk, verified);
    if (!plan.obstacle) {
        plan.table = TableOf(disk);
    }
    if (const auto target = request.targets.find(disk.number); target != request.targets.end()) {
        plan.target = LookAt(target->second);
    }
    return plan;
}

std::vector<Finding> RefusalsOf(const std::vector<DiskPlan>& plans) {
    std::vector<Finding> refusals;
    for (const DiskPlan& plan : plans) {
        const std::vector<Finding> own = RefusalsOf(plan);
        refusals.insert(refusals.end(), own.begin(), own.end());
        for (const DiskPlan& earlier : plans) {
            if (&earlier == &plan) {
                break;
            }
            if (SameTarget(plan.target, earlier.target)) {
                refusals.push_back(SameTargetRefusal(*plan.disk, *earlier.disk, plan.target));
            }
        }
    }
    return refusals;
}

}  // namespace

Plan PlanOf(const Machine& machine, const PlanRequest& request) {
    const Subject subject(machine);
    RequireDisks(subject, request);
    const std::vector<Finding> verified = Verify(machine);
    std::vector<DiskPlan> plans;
    Plan plan;
    for (const Disk& disk : machine.disks) {
        if (request.disks.empty() || request.disks.contains(disk.number)) {
            plans.push_back(PlanDisk(subject, disk, request, verified));
        }
    }
    plan.refusals = RefusalsOf(plans);
    if (!plan.refusals.empty()) {
        return plan;
    }
    plan.losses = MissingDisks(subject, request.disks);
    const std::vector<Finding> unplaced = UnplacedVolumes(verified);
    plan.losses.insert(plan.losses.end(), unplaced.begin(), unplaced.end());
    for (const DiskPlan& one : plans) {
        if (one.obstacle) {
            plan.losses.push_back(*one.obstacle);
        } else {
            plan.files.push_back(
                {ScriptName(*one.disk), ScriptOf(machine, *one.disk, one.table, one.target)});
        }
        const std::vector<Finding> losses = LossesOn(subject, one);
        plan.losses.insert(plan.losses.end(), losses.begin(), losses.end());
    }
    plan.files.push_back({"plan.md", PageOf(subject, plans, plan.losses)});
    return plan;
}

}  // namespace documents

#include "documents/plan/plan.h"

#include "documents/model/lookup.h"
#include "documents/plan/disk_plan.h"
#include "documents/plan/obstacles.h"
#include "documents/plan/page.h"
#include "documents/plan/script.h"

namespace documents {

namespace {

void RequireDisk(const Machine& machine, std::uint32_t number) {
    if (FindDisk(machine, number) == nullptr) {
        throw TargetError("the document has no disk " + std::to_string(number));
    }
}

void RequireDisks(const Machine& machine, const PlanRequest& request) {
    for (const std::uint32_t number : request.disks) {
        RequireDisk(machine, number);
    }
    for (const auto& [number, target] : request.targets) {
        RequireDisk(machine, number);
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
        if (plan.obstacle) {
            continue;
        }
        const std::vector<Finding> own = RefusalsOf(*plan.disk, plan.table, plan.target);
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
    RequireDisks(machine, request);
    const Subject subject(machine);
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
    if (request.disks.empty()) {
        plan.losses = MissingDisks(subject);
    }
    for (const DiskPlan& one : plans) {
        if (one.obstacle) {
            plan.losses.push_back(*one.obstacle);
        } else {
            plan.files.push_back(
                {ScriptName(*one.disk), ScriptOf(machine, *one.disk, one.table, one.target)});
        }
        const std::vector<Finding> losses = LossesOn(subject, *one.disk);
        plan.losses.insert(plan.losses.end(), losses.begin(), losses.end());
    }
    plan.files.push_back({"plan.md", PageOf(subject, plans, plan.losses)});
    return plan;
}

}  // namespace documents

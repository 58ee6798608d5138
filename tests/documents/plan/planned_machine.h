#pragma once

#include "documents/plan/plan.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Small machines for the tests of plans.
namespace planned {

inline constexpr std::uint64_t kMiB = 1 << 20;
inline constexpr const char* kBasicData = "{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}";

inline documents::Disk EmptyDisk(std::uint32_t number, documents::Style style,
                                 std::uint64_t size = 100 * kMiB) {
    documents::Disk disk;
    disk.number = number;
    disk.size = size;
    disk.sector_size = 512;
    disk.style = style;
    disk.partitions.emplace();
    disk.gaps = {{{kMiB, size - kMiB}, false}};
    return disk;
}

// Adds a partition; places are in MiB.
inline documents::Partition& Add(documents::Disk& disk, std::uint64_t start, std::uint64_t length,
                                 documents::PartitionKind kind = documents::PartitionKind::kPrimary) {
    documents::Partition partition;
    partition.place = {start * kMiB, length * kMiB};
    partition.kind = kind;
    if (disk.style == documents::Style::kGpt) {
        partition.gpt_type = kBasicData;
        partition.id = "{AAAAAAAA-0000-4000-8000-00000000000" + std::to_string(disk.partitions->size()) + "}";
    } else {
        partition.mbr_type = 7;
        partition.active = false;
    }
    return disk.partitions->emplace_back(partition);
}

inline documents::Machine MachineOf(std::vector<documents::Disk> disks) {
    documents::Machine machine;
    machine.disks = std::move(disks);
    return machine;
}

// Adds a volume; its place is in MiB.
inline documents::Volume& AddVolume(documents::Machine& machine, std::uint32_t disk, std::uint64_t start,
                                    std::uint64_t length) {
    documents::Volume volume;
    volume.path = "\\\\?\\Volume{" + std::to_string(machine.volumes.size()) + "}\\";
    volume.size = length * kMiB;
    volume.dynamic = false;
    documents::Extent extent;
    extent.disk = disk;
    extent.place = {start * kMiB, length * kMiB};
    volume.extents = {extent};
    return machine.volumes.emplace_back(volume);
}

// An MBR disk with a partition from 1 to 10 MiB.
inline documents::Disk UsualDisk(std::uint32_t number = 0) {
    documents::Disk disk = EmptyDisk(number, documents::Style::kMbr);
    Add(disk, 1, 9);
    return disk;
}

// "P002 error disk 1"
inline std::vector<std::string> Lines(const std::vector<documents::Finding>& findings) {
    std::vector<std::string> lines;
    lines.reserve(findings.size());
    for (const documents::Finding& finding : findings) {
        lines.push_back(std::string(finding.code) + " " + std::string(NameOf(finding.severity)) + " " +
                        finding.place);
    }
    return lines;
}

// plan.md
inline std::string PlanPage(const documents::Plan& plan) {
    return plan.files.empty() ? "" : plan.files.back().text;
}

}  // namespace planned

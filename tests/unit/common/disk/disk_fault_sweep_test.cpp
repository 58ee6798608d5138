#include "common/disk/disk_drive_manager_factory.h"
#include "common/disk/partition_manager_gpt.h"
#include "support/logger_capture.h"
#include "unit/common/disk/simulated_disks.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

// Makes each call of reading a disk and of writing its table fail, once alone and once with all later calls.
namespace bmr_common {
namespace {

using simulated_disks::kGptDisk;
using simulated_disks::Machine;

// Returns true if a call with this number was made and failed. The Machine checks for leaked handles.
bool ReadWithFault(std::size_t ordinal, bool from_there_on) {
    const support::LoggerCapture log;
    Machine machine(kGptDisk);
    machine.simulation().faults().FailOrdinal(ordinal, from_there_on);

    const DiskDriveManagerPtr disk = DiskDriveManagerFactory().CreateAndInitialize(3);

    std::vector<std::wstring> reasons;
    const bool can_backup = disk->can_backup(reasons);
    EXPECT_EQ(can_backup, reasons.empty()) << ordinal;
    disk->DumpInfo();
    return machine.simulation().faults().hits() != 0;
}

bool WriteWithFault(std::size_t ordinal, bool from_there_on) {
    const support::LoggerCapture log;
    Machine machine(kGptDisk);
    PartitionManagerGPT manager(3);
    manager.Initialize(machine.Open());
    machine.simulation().calls().Clear();
    machine.simulation().faults().FailOrdinal(ordinal, from_there_on);

    const bool written = manager.DeletePartitionsAndWrite({simulated_disks::kMiB});

    // If one of the first two calls fails, nothing is written to the disk. The fifth closes it; its failure
    // is ignored.
    const bool hit = machine.simulation().faults().hits() != 0;
    EXPECT_EQ(hit && ordinal <= 2 ? 3U : 2U, machine.disk().partitions.size()) << ordinal;
    EXPECT_EQ(!hit || ordinal == 5, written) << ordinal;
    return hit;
}

TEST(DiskFaultSweepTest, EachCallFails_ReadingEndsOrderly) {
    for (const bool from_there_on : {false, true}) {
        std::size_t ordinal = 1;
        while (ReadWithFault(ordinal, from_there_on)) {
            ++ordinal;
        }
        EXPECT_GT(ordinal, 4U) << "opening, geometry, layout, closing";
    }
}

TEST(DiskFaultSweepTest, EachCallFails_WritingEndsOrderly) {
    for (const bool from_there_on : {false, true}) {
        std::size_t ordinal = 1;
        while (WriteWithFault(ordinal, from_there_on)) {
            ++ordinal;
        }
        EXPECT_EQ(6U, ordinal) << "opening, setting, updating, flushing, closing";
    }
}

}  // namespace
}  // namespace bmr_common

#include "common/disk/partition_gpt.h"
#include "common/disk/partition_manager_gpt.h"
#include "common/disk/partition_manager_mbr.h"
#include "common/disk/partition_mbr.h"
#include "support/each_of.h"
#include "support/logger_capture.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/partition_entries.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::kGptDisk;
using simulated_disks::kMbrDisk;
using simulated_disks::kMiB;
using simulated_disks::Machine;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLayoutCall = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX";

std::vector<std::wstring> ReasonsOf(const PartitionManager& manager) {
    std::vector<std::wstring> reasons;
    EXPECT_FALSE(manager.can_backup(reasons));
    return reasons;
}

class PartitionManagerInitializeTest : public testing::Test {
protected:
    template <class Manager>
    static void Initialize(Machine& machine, Manager& manager) {
        const UniqueFile drive = machine.Open();
        manager.Initialize(drive);
    }

    support::LoggerCapture log_;
};

TEST_F(PartitionManagerInitializeTest, Gpt_EntriesNotSorted_KeepTheLayoutsOrder) {
    Machine machine(kGptDisk);
    std::swap(machine.disk().partitions[0], machine.disk().partitions[2]);
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_THAT(support::EachOf(manager.partitions(), &Partition::starting_offset),
                ElementsAre(117 * kMiB, 101 * kMiB, kMiB));
}

TEST_F(PartitionManagerInitializeTest, Gpt_MbrDisk_RecordsTheOtherStyle) {
    Machine machine(kMbrDisk);
    PartitionManagerGPT manager(1);

    Initialize(machine, manager);

    EXPECT_TRUE(manager.IsSucceeded(L"Getting Drive Layout Ex"));
    EXPECT_TRUE(manager.IsFailed(L"Verifying partition type"));
    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Partitions are not GPT but is 0 on disk 1"));
    EXPECT_THAT(log_.all(), Contains(Trace("bmr_common::PartitionManagerGPT::Initialize Partitions are not "
                                           "GPT but is 0 on disk 1")));
}

TEST_F(PartitionManagerInitializeTest, Mbr_GptDisk_RecordsTheOtherStyle) {
    Machine machine(kGptDisk);
    PartitionManagerMBR manager(3);

    Initialize(machine, manager);

    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Partitions are not MBR but is 1 on disk 3"));
    EXPECT_THAT(log_.all(), Contains(Trace("bmr_common::PartitionManagerMBR::Initialize Partitions are not "
                                           "MBR but is 1 on disk 3")));
}

TEST_F(PartitionManagerInitializeTest, LayoutRefused_IsRecordedWithDiskAndError) {
    Machine machine(kGptDisk);
    machine.simulation().faults().Fail(kLayoutCall, ERROR_NOT_READY);
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_TRUE(manager.IsFailed(L"Getting Drive Layout Ex"));
    EXPECT_FALSE(manager.IsFailed(L"Verifying partition type"));
    EXPECT_FALSE(manager.IsSucceeded(L"Verifying partition type"));
    EXPECT_EQ(nullptr, manager.layout());
    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Failed to get drive 3 layout information error: 21"));
}

TEST_F(PartitionManagerInitializeTest, Mbr_InitializeEmptyLayout_IsFourUnusedEntries) {
    made::MbrManager manager;

    manager.InitializeEmptyLayout(0x1234ABCD);

    EXPECT_TRUE(manager.IsSucceeded(L"Getting Drive Layout Ex"));
    EXPECT_TRUE(manager.IsSucceeded(L"Verifying partition type"));
    EXPECT_EQ(624U, manager.layout_bytes().size());
    ASSERT_NE(nullptr, manager.layout());
    EXPECT_EQ(0U, manager.layout()->PartitionStyle);
    EXPECT_EQ(4U, manager.layout()->PartitionCount);
    EXPECT_EQ(0x1234ABCDU, manager.layout()->Mbr.Signature);
    const std::vector<unsigned char> entries(manager.layout_bytes().begin() + 48,
                                             manager.layout_bytes().end());
    EXPECT_EQ(std::vector<unsigned char>(576), entries);
    ASSERT_EQ(4U, manager.partitions().size());
    for (const PartitionPtr& partition : manager.partitions()) {
        EXPECT_TRUE(partition->is_unused());
    }
}

}  // namespace
}  // namespace bmr_common

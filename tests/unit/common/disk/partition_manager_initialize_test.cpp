#include "common/disk/partition_gpt.h"
#include "common/disk/partition_manager_gpt.h"
#include "common/disk/partition_manager_mbr.h"
#include "common/disk/partition_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/partition_entries.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::kGptDisk;
using simulated_disks::kMbrDisk;
using simulated_disks::kMiB;
using simulated_disks::Machine;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLayoutCall = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX";

std::vector<std::wstring> ReasonsOf(const PartitionManager& manager) {
    std::vector<std::wstring> reasons;
    EXPECT_FALSE(manager.can_backup(reasons));
    return reasons;
}

std::vector<std::int64_t> Starts(const PartitionManager& manager) {
    std::vector<std::int64_t> starts;
    for (const PartitionPtr& partition : manager.partitions()) {
        starts.push_back(partition->starting_offset());
    }
    return starts;
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

TEST_F(PartitionManagerInitializeTest, New_HasNothing) {
    const PartitionManagerGPT manager(3);

    EXPECT_EQ(nullptr, manager.layout());
    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_EQ(0U, manager.ErrorCount());
    EXPECT_FALSE(manager.IsSucceeded(L"Getting Drive Layout Ex"));
    EXPECT_FALSE(manager.IsFailed(L"Verifying partition type"));
}

TEST_F(PartitionManagerInitializeTest, CreatePartition_EachKind_IsEmptyAndRaw) {
    const PartitionPtr gpt = PartitionManagerGPT(3).CreatePartition();
    const PartitionPtr mbr = PartitionManagerMBR(3).CreatePartition();
    PARTITION_INFORMATION_EX expected{};
    entries::SetStyle(expected, PARTITION_STYLE_RAW);

    EXPECT_NE(nullptr, dynamic_cast<PartitionGPT*>(gpt.get()));
    EXPECT_NE(nullptr, dynamic_cast<PartitionMBR*>(mbr.get()));
    EXPECT_EQ(0, std::memcmp(&expected, &gpt->entry(), sizeof(expected)));
    EXPECT_EQ(0, std::memcmp(&expected, &mbr->entry(), sizeof(expected)));
}

TEST_F(PartitionManagerInitializeTest, Gpt_GptDisk_TakesEveryEntryInOrder) {
    Machine machine(kGptDisk);
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_TRUE(manager.IsSucceeded(L"Getting Drive Layout Ex"));
    EXPECT_TRUE(manager.IsSucceeded(L"Verifying partition type"));
    EXPECT_THAT(Starts(manager), ElementsAre(kMiB, 101 * kMiB, 117 * kMiB));
    ASSERT_NE(nullptr, manager.layout());
    EXPECT_EQ(3U, manager.layout()->PartitionCount);
}

TEST_F(PartitionManagerInitializeTest, Gpt_EntriesNotSorted_KeepTheLayoutsOrder) {
    Machine machine(kGptDisk);
    std::swap(machine.disk().partitions[0], machine.disk().partitions[2]);
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_THAT(Starts(manager), ElementsAre(117 * kMiB, 101 * kMiB, kMiB));
}

TEST_F(PartitionManagerInitializeTest, Mbr_MbrDisk_TakesUnusedSlotsToo) {
    Machine machine(kMbrDisk);
    PartitionManagerMBR manager(1);

    Initialize(machine, manager);

    EXPECT_EQ(0U, manager.ErrorCount());
    EXPECT_THAT(Starts(manager), ElementsAre(kMiB, 501 * kMiB, 0, 0));
    EXPECT_TRUE(manager.partitions()[3]->is_unused());
}

TEST_F(PartitionManagerInitializeTest, Gpt_MbrDisk_RecordsTheOtherStyle) {
    Machine machine(kMbrDisk);
    PartitionManagerGPT manager(1);

    Initialize(machine, manager);

    EXPECT_TRUE(manager.IsSucceeded(L"Getting Drive Layout Ex"));
    EXPECT_TRUE(manager.IsFailed(L"Verifying partition type"));
    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Partitions are not GPT but is 0 on disk 1"));
    EXPECT_TRUE(log_.Contains(support::kHostTrace,
                              "bmr_common::PartitionManagerGPT::Initialize Partitions are not "
                              "GPT but is 0 on disk 1"))
        << log_;
}

TEST_F(PartitionManagerInitializeTest, Mbr_GptDisk_RecordsTheOtherStyle) {
    Machine machine(kGptDisk);
    PartitionManagerMBR manager(3);

    Initialize(machine, manager);

    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Partitions are not MBR but is 1 on disk 3"));
    EXPECT_TRUE(log_.Contains(support::kHostTrace,
                              "bmr_common::PartitionManagerMBR::Initialize Partitions are not "
                              "MBR but is 1 on disk 3"))
        << log_;
}

TEST_F(PartitionManagerInitializeTest, Mbr_RawDisk_RecordsTheOtherStyle) {
    Machine machine(R"({"disks": [{"index": 12, "size": "1 GiB"}]})");
    PartitionManagerMBR manager(12);

    Initialize(machine, manager);

    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Partitions are not MBR but is 2 on disk 12"));
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

TEST_F(PartitionManagerInitializeTest, Mbr_LayoutRefused_IsRecordedToo) {
    Machine machine(kMbrDisk);
    machine.simulation().faults().Fail(kLayoutCall, ERROR_ACCESS_DENIED);
    PartitionManagerMBR manager(1);

    Initialize(machine, manager);

    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Failed to get drive 1 layout information error: 5"));
}

TEST_F(PartitionManagerInitializeTest, LayoutOf128Entries_IsReadWithADoublingBuffer) {
    Machine machine(kGptDisk);
    machine::Disk& disk = machine.disk();
    disk.partitions.resize(1);
    for (std::uint64_t i = 1; i < 128; ++i) {
        machine::Partition next = disk.partitions.front();
        next.offset = (1 + i * 2) << 20;
        disk.partitions.push_back(next);
    }
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_EQ(128U, manager.partitions().size());
    EXPECT_EQ(7U, machine.simulation().calls().Count(kLayoutCall)) << "512 bytes, then doubled up to 32768";
}

TEST_F(PartitionManagerInitializeTest, LayoutWithoutEntries_MakesNoPartitions) {
    Machine machine(kGptDisk);
    machine.disk().partitions.clear();
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_EQ(0U, manager.ErrorCount());
    EXPECT_THAT(manager.partitions(), IsEmpty());
    EXPECT_NE(nullptr, manager.layout());
}

// Driver answers that are not a complete layout.
void CountMoreEntries(machine::Answer& answer) {
    const std::uint32_t count = 4;
    std::memcpy(answer.bytes.data() + offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionCount), &count,
                sizeof(count));
}
void CountTheMostEntries(machine::Answer& answer) {
    std::memset(answer.bytes.data() + offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionCount), 0xFF,
                sizeof(DWORD));
}
void ReturnLessThanTheHeader(machine::Answer& answer) {
    answer.returned = 47;
}
void ReturnNothing(machine::Answer& answer) {
    answer.returned = 0;
}
void ReturnMoreThanTheBuffer(machine::Answer& answer) {
    answer.returned = 0xFFFFFFFF;
}
void CutTheLastEntry(machine::Answer& answer) {
    --answer.returned;
}

TEST_F(PartitionManagerInitializeTest, LyingLayout_IsARecordedError) {
    void (*const lies[])(machine::Answer&) = {CountMoreEntries,        CountTheMostEntries,
                                              ReturnLessThanTheHeader, ReturnNothing,
                                              ReturnMoreThanTheBuffer, CutTheLastEntry};
    for (const auto& lie : lies) {
        Machine machine(kGptDisk);
        machine.simulation().faults().Alter(kLayoutCall, [lie](machine::Answer& answer) {
            if (!answer.failed) {
                lie(answer);
            }
        });
        PartitionManagerGPT manager(3);

        Initialize(machine, manager);

        EXPECT_TRUE(manager.IsFailed(L"Getting Drive Layout Ex"));
        EXPECT_EQ(nullptr, manager.layout());
        EXPECT_THAT(manager.partitions(), IsEmpty());
        EXPECT_THAT(ReasonsOf(manager),
                    ElementsAre(testing::StartsWith(L"Failed to get drive 3 layout information error: ")));
    }
}

TEST_F(PartitionManagerInitializeTest, SystemAskingForMoreForEver_EndsInARecordedError) {
    Machine machine(kGptDisk);
    machine.simulation().calls().SetKept(false);
    machine.simulation().faults().Fail(kLayoutCall, ERROR_INSUFFICIENT_BUFFER);
    PartitionManagerGPT manager(3);

    Initialize(machine, manager);

    EXPECT_THAT(ReasonsOf(manager), ElementsAre(L"Failed to get drive 3 layout information error: 122"));
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

TEST_F(PartitionManagerInitializeTest, Mbr_InitializeEmptyLayout_DropsThePartitionsThereWere) {
    made::MbrManager manager{entries::Mbr(kMiB, kMiB)};

    manager.InitializeEmptyLayout(1);

    EXPECT_THAT(Starts(manager), ElementsAre(0, 0, 0, 0));
}

}  // namespace
}  // namespace bmr_common

#include "support/each_of.h"
#include "support/logger_capture.h"
#include "support/refused_imports.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/partition_entries.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

namespace bmr_common {
namespace {

using made::GptManager;
using support::Error;
using testing::ElementsAre;

constexpr std::int64_t kMiB = 1LL << 20;
constexpr std::uint32_t kAlignment = 1U << 20;
constexpr std::int64_t kDiskSize = 1000 * kMiB;

// Partitions at 100 to 199 and at 300 to 399 MiB, and an unused entry.
class PartitionManagerGptEditingTest : public testing::Test {
protected:
    bool Add(std::int64_t start, std::int64_t size, std::int64_t minimum,
             const GUID& type = entries::kBasicData) {
        return manager_.AddPartitionInMemory(start, size, minimum, kDiskSize, kAlignment, type, &used_start_,
                                             &used_size_);
    }
    const PARTITION_INFORMATION_EX& Last() const { return manager_.partitions().back()->entry(); }
    std::vector<std::int64_t> Starts() const {
        return support::EachOf(manager_.partitions(), &Partition::starting_offset);
    }

    GptManager manager_{entries::Gpt(100 * kMiB, 100 * kMiB),
                        entries::Gpt(500 * kMiB, kMiB, entries::kUnused),
                        entries::Gpt(300 * kMiB, 100 * kMiB, entries::kReserved)};
    std::int64_t used_start_ = -1;
    std::int64_t used_size_ = -1;
    support::LoggerCapture log_;
};

TEST_F(PartitionManagerGptEditingTest, Add_NewEntry_IsFilledCompletely) {
    ASSERT_TRUE(Add(10 * kMiB, 20 * kMiB, kMiB, entries::kRecovery));

    const PARTITION_INFORMATION_EX& entry = Last();
    EXPECT_EQ(PARTITION_STYLE_GPT, entry.PartitionStyle);
    EXPECT_EQ(10 * kMiB, entry.StartingOffset.QuadPart);
    EXPECT_EQ(1U, entry.PartitionNumber);
    EXPECT_FALSE(entry.RewritePartition);
    EXPECT_TRUE(IsEqualGUID(entries::kRecovery, entry.Gpt.PartitionType));
    EXPECT_FALSE(IsEqualGUID(GUID{}, entry.Gpt.PartitionId));
    EXPECT_EQ(0U, entry.Gpt.Attributes);
    EXPECT_EQ(L"Basic data partition", std::wstring(entry.Gpt.Name));
}

TEST_F(PartitionManagerGptEditingTest, Add_NoGuidToBeHad_LogsAndKeepsTheZeroId) {
    const auto refused = support::RefuseGuids();

    ASSERT_TRUE(Add(10 * kMiB, kMiB, kMiB));

    EXPECT_TRUE(IsEqualGUID(GUID{}, Last().Gpt.PartitionId));
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("CoCreateGuid call failed error: 2147500037")));
}

TEST_F(PartitionManagerGptEditingTest, Add_GapSmallerThanTheRoundedMinimum_AddsNothing) {
    EXPECT_FALSE(Add(50 * kMiB, 60 * kMiB, 50 * kMiB + 1));

    EXPECT_EQ(3U, manager_.partitions().size());
    EXPECT_EQ(50 * kMiB, used_start_) << "the start is given before the sizes are compared";
    EXPECT_EQ(-1, used_size_);
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("bmr_common::PartitionManagerGPT::AddPartitionInMemory Maximum available size is "
                          "52428800 but minimum requested was 53477376.")));
}

TEST_F(PartitionManagerGptEditingTest, Add_PastTheEndOfTheDisk_LeavesOneUnitFree) {
    ASSERT_TRUE(Add(900 * kMiB, 200 * kMiB, kMiB));

    EXPECT_EQ(99 * kMiB, used_size_);
}

TEST_F(PartitionManagerGptEditingTest, Add_ExactlyToTheEndOfTheDisk_TakesItWhole) {
    ASSERT_TRUE(Add(900 * kMiB, 100 * kMiB, kMiB));

    EXPECT_EQ(100 * kMiB, used_size_);
}

TEST_F(PartitionManagerGptEditingTest, Add_StartBehindTheDisk_AddsNothing) {
    EXPECT_FALSE(Add(kDiskSize, kMiB, kMiB));

    EXPECT_EQ(3U, manager_.partitions().size());
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(
            Error("bmr_common::PartitionManager::GetMaximumPartitionSize Disk offset 1048576000 larger "
                  "that disk size 1048576000"),
            Error("bmr_common::PartitionManagerGPT::AddPartitionInMemory Maximum available size is 0 "
                  "but minimum requested was 1048576.")));
}

TEST_F(PartitionManagerGptEditingTest, Add_OverAnUnusedEntry_CountsItAsTaken) {
    ASSERT_TRUE(Add(450 * kMiB, 100 * kMiB, kMiB));

    EXPECT_EQ(50 * kMiB, used_size_);
}

TEST_F(PartitionManagerGptEditingTest, Add_NoOutputs_AddsNothing) {
    EXPECT_FALSE(manager_.AddPartitionInMemory(10 * kMiB, kMiB, kMiB, kDiskSize, kAlignment,
                                               entries::kBasicData, nullptr, &used_size_));
    EXPECT_FALSE(manager_.AddPartitionInMemory(10 * kMiB, kMiB, kMiB, kDiskSize, kAlignment,
                                               entries::kBasicData, &used_start_, nullptr));

    EXPECT_EQ(3U, manager_.partitions().size());
    EXPECT_EQ(-1, used_start_);
    EXPECT_EQ(-1, used_size_);
}

TEST_F(PartitionManagerGptEditingTest, Add_AlignmentZero_LogsAndAddsNothing) {
    EXPECT_FALSE(manager_.AddPartitionInMemory(10 * kMiB, kMiB, kMiB, kDiskSize, 0, entries::kBasicData,
                                               &used_start_, &used_size_));

    EXPECT_EQ(3U, manager_.partitions().size());
    EXPECT_EQ(-1, used_start_);
    EXPECT_EQ(-1, used_size_);
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("bmr_common::PartitionManagerGPT::AddPartitionInMemory the alignment is 0")));
}

TEST_F(PartitionManagerGptEditingTest, Delete_UnusedOrMissing_LogsAndRemovesNothing) {
    EXPECT_FALSE(manager_.DeletePartitionFromMemory(500 * kMiB));
    EXPECT_FALSE(manager_.DeletePartitionFromMemory(1));

    EXPECT_EQ(3U, manager_.partitions().size());
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(
            Error("bmr_common::PartitionManagerGPT::DeletePartitionFromMemory Can't find partition at "
                  "starting offset 524288000"),
            Error("bmr_common::PartitionManagerGPT::DeletePartitionFromMemory Can't find partition at "
                  "starting offset 1")));
}

TEST_F(PartitionManagerGptEditingTest, Delete_TwoAtTheSameStart_RemovesTheFirst) {
    GptManager manager{entries::Gpt(kMiB, 5 * kMiB), entries::Gpt(kMiB, 7 * kMiB)};

    EXPECT_TRUE(manager.DeletePartitionFromMemory(kMiB));

    ASSERT_EQ(1U, manager.partitions().size());
    EXPECT_EQ(7 * kMiB, manager.partitions().front()->length());
}

TEST_F(PartitionManagerGptEditingTest, Resize_BeyondTheNextPartition_LogsTheStartAndTheMaximum) {
    EXPECT_FALSE(manager_.ResizePartitionInMemory(100 * kMiB, 201 * kMiB, kDiskSize, kAlignment));

    EXPECT_EQ(100 * kMiB, manager_.partitions()[0]->length());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error(
                    "bmr_common::PartitionManagerGPT::ResizePartitionInMemory New partition size too big "
                    "104857600 only 209715200 bytes available")));
}

TEST_F(PartitionManagerGptEditingTest, Resize_Unaligned_LogsAndKeepsTheLength) {
    EXPECT_FALSE(manager_.ResizePartitionInMemory(100 * kMiB, 50 * kMiB + 512, kDiskSize, kAlignment));

    EXPECT_EQ(100 * kMiB, manager_.partitions()[0]->length());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("bmr_common::PartitionManager::PartitionCorrectlyAligned "
                                  "partition's end 157286912 not aligned on 1048576 boundary")));
}

TEST_F(PartitionManagerGptEditingTest, Resize_AlignmentZero_LogsAndKeepsTheLength) {
    EXPECT_FALSE(manager_.ResizePartitionInMemory(100 * kMiB, 50 * kMiB, kDiskSize, 0));

    EXPECT_EQ(100 * kMiB, manager_.partitions()[0]->length());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("bmr_common::PartitionManager::PartitionCorrectlyAligned "
                                                   "the alignment is 0")));
}

TEST_F(PartitionManagerGptEditingTest, Resize_NoUsedPartitionThere_Logs) {
    EXPECT_FALSE(manager_.ResizePartitionInMemory(500 * kMiB, kMiB, kDiskSize, kAlignment));

    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("bmr_common::PartitionManagerGPT::ResizePartitionInMemory Can't find partition at "
                          "starting offset 524288000")));
}

TEST_F(PartitionManagerGptEditingTest, Resize_LastPartition_LeavesOneUnitFree) {
    GptManager manager{entries::Gpt(100 * kMiB, kMiB)};

    EXPECT_FALSE(manager.ResizePartitionInMemory(100 * kMiB, 900 * kMiB, kDiskSize, kAlignment));
    EXPECT_TRUE(manager.ResizePartitionInMemory(100 * kMiB, 899 * kMiB, kDiskSize, kAlignment));
}

TEST_F(PartitionManagerGptEditingTest, DeletePartitionsAndWrite_OneMissing_KeepsEarlierRemovals) {
    EXPECT_FALSE(manager_.DeletePartitionsAndWrite({300 * kMiB, 7, 100 * kMiB}));

    EXPECT_THAT(Starts(), ElementsAre(100 * kMiB, 500 * kMiB));
}

}  // namespace
}  // namespace bmr_common

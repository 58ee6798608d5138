#include "support/logger_capture.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/partition_entries.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace bmr_common {
namespace {

using made::GptManager;
using made::MbrManager;
using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMiB = 1LL << 20;
constexpr std::uint32_t kAlignment = 1U << 20;
constexpr std::int64_t kDiskSize = 1000 * kMiB;

class PartitionManagerSpaceTest : public testing::Test {
protected:
    support::LoggerCapture log_;
};

TEST_F(PartitionManagerSpaceTest, GetNextPartitionAfter_Unsorted_GivesTheNearestStrictlyBehind) {
    const GptManager manager{entries::Gpt(300 * kMiB, kMiB), entries::Gpt(100 * kMiB, kMiB),
                             entries::Gpt(200 * kMiB, kMiB)};
    std::int64_t next = 0;

    EXPECT_TRUE(manager.GetNextPartitionAfter(0, next));
    EXPECT_EQ(100 * kMiB, next);
    EXPECT_TRUE(manager.GetNextPartitionAfter(100 * kMiB, next));
    EXPECT_EQ(200 * kMiB, next);
    EXPECT_TRUE(manager.GetNextPartitionAfter(200 * kMiB - 1, next));
    EXPECT_EQ(200 * kMiB, next);
}

TEST_F(PartitionManagerSpaceTest, GetNextPartitionAfter_NoneBehind_LeavesTheResult) {
    const MbrManager manager{entries::Mbr(100 * kMiB, kMiB), entries::Mbr(0, 0, 0)};
    std::int64_t next = 42;

    EXPECT_FALSE(manager.GetNextPartitionAfter(100 * kMiB, next));
    EXPECT_FALSE(MbrManager().GetNextPartitionAfter(0, next));
    EXPECT_EQ(42, next);
}

TEST_F(PartitionManagerSpaceTest, GetNextPartitionAfter_ManagersList_KeepsItsOrder) {
    const GptManager manager{entries::Gpt(300 * kMiB, kMiB), entries::Gpt(100 * kMiB, kMiB)};
    std::int64_t next = 0;

    EXPECT_TRUE(manager.GetNextPartitionAfter(0, next));

    EXPECT_EQ(100 * kMiB, next);
    EXPECT_EQ(300 * kMiB, manager.partitions().front()->starting_offset());
}

TEST_F(PartitionManagerSpaceTest, GetSpaceToEnd_Gpt_KeepsOneAlignmentUnitFree) {
    EXPECT_EQ(kDiskSize - 10 * kMiB, MbrManager().GetSpaceToEnd(10 * kMiB, kDiskSize, kAlignment));
    EXPECT_EQ(kDiskSize - 11 * kMiB, GptManager().GetSpaceToEnd(10 * kMiB, kDiskSize, kAlignment));
}

TEST_F(PartitionManagerSpaceTest, GetMaximumPartitionSize_OddSpace_IsRoundedDown) {
    const GptManager manager{entries::Gpt(100 * kMiB + 17, kMiB)};

    EXPECT_EQ(90 * kMiB, manager.GetMaximumPartitionSize(10 * kMiB, kDiskSize, kAlignment));
    EXPECT_EQ(0, manager.GetMaximumPartitionSize(100 * kMiB, kDiskSize, kAlignment));
    EXPECT_EQ(899 * kMiB, MbrManager().GetMaximumPartitionSize(100 * kMiB + 1, kDiskSize, kAlignment));
}

TEST_F(PartitionManagerSpaceTest, GetMaximumPartitionSize_OffsetAtOrBehindTheEnd_IsNothing) {
    EXPECT_EQ(0, GptManager().GetMaximumPartitionSize(1000, 1000, kAlignment));
    EXPECT_EQ(0, MbrManager().GetMaximumPartitionSize(1001, 1000, kAlignment));
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(
            Error("bmr_common::PartitionManager::GetMaximumPartitionSize Disk offset 1000 larger that "
                  "disk size 1000"),
            Error("bmr_common::PartitionManager::GetMaximumPartitionSize Disk offset 1001 larger that "
                  "disk size 1000")));
}

TEST_F(PartitionManagerSpaceTest, GetMaximumPartitionSize_AlignmentZero_IsNothingAndLogged) {
    const GptManager gpt{entries::Gpt(100 * kMiB, kMiB)};

    EXPECT_EQ(0, gpt.GetMaximumPartitionSize(10 * kMiB, kDiskSize, 0));
    EXPECT_EQ(0, MbrManager().GetMaximumPartitionSize(10 * kMiB, kDiskSize, 0));

    const auto line = Error("bmr_common::PartitionManager::GetMaximumPartitionSize the alignment is 0");
    EXPECT_THAT(log_.Messages(), ElementsAre(line, line));
}

TEST_F(PartitionManagerSpaceTest, GetMaximumPartitionSize_AlignmentZeroBehindTheDisk_LogsOneLine) {
    EXPECT_EQ(0, GptManager().GetMaximumPartitionSize(1000, 1000, 0));

    EXPECT_EQ(1U, log_.Messages().size()) << log_;
}

TEST_F(PartitionManagerSpaceTest, GetSpaceToEnd_AlignmentZero_KeepsNothingFree) {
    EXPECT_EQ(kDiskSize - 10 * kMiB, MbrManager().GetSpaceToEnd(10 * kMiB, kDiskSize, 0));
    EXPECT_EQ(kDiskSize - 10 * kMiB, GptManager().GetSpaceToEnd(10 * kMiB, kDiskSize, 0));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(PartitionManagerSpaceTest, PartitionCorrectlyAligned_AlignmentZero_IsFalseAndLogged) {
    EXPECT_FALSE(PartitionManager::PartitionCorrectlyAligned(kMiB, kMiB, 0));
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("bmr_common::PartitionManager::PartitionCorrectlyAligned "
                                                   "the alignment is 0")));
}

TEST_F(PartitionManagerSpaceTest, PartitionCorrectlyAligned_BothEndsOnTheBoundary_Agrees) {
    EXPECT_TRUE(PartitionManager::PartitionCorrectlyAligned(kMiB, 5 * kMiB, kAlignment));
    EXPECT_TRUE(PartitionManager::PartitionCorrectlyAligned(0, 0, kAlignment));
    EXPECT_TRUE(PartitionManager::PartitionCorrectlyAligned(63 * 512, 512, 512));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(PartitionManagerSpaceTest, PartitionCorrectlyAligned_StartOff_LogsTheStart) {
    EXPECT_FALSE(PartitionManager::PartitionCorrectlyAligned(kMiB + 512, kMiB - 512, kAlignment));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("bmr_common::PartitionManager::PartitionCorrectlyAligned partition's "
                                  "starting_offset 1049088 not aligned on 1048576 boundary ")));
}

TEST_F(PartitionManagerSpaceTest, PartitionCorrectlyAligned_EndOff_LogsTheEnd) {
    EXPECT_FALSE(PartitionManager::PartitionCorrectlyAligned(kMiB, 512, kAlignment));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("bmr_common::PartitionManager::PartitionCorrectlyAligned "
                                  "partition's end 1049088 not aligned on 1048576 boundary")));
}

}  // namespace
}  // namespace bmr_common

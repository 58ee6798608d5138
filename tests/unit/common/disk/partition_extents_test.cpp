#include "common/disk/partition_gpt.h"
#include "common/disk/partition_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/partition_entries.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <string>

namespace bmr_common {
namespace {

using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

// The partition of the tables below: bytes 1000 to 1499.
constexpr std::int64_t kStart = 1000;
constexpr std::int64_t kLength = 500;

constexpr std::int64_t kTebibyte = 1LL << 40;

struct ExtentCase {
    std::int64_t offset;
    std::int64_t length;
    bool contained;
    bool partial;  // reported as partly inside
    bool overlapped;
    const char* what;
};

constexpr ExtentCase kExtents[] = {
    {1000, 500, true, false, true, "equal to the partition"},
    {1000, 501, false, true, true, "from the start to one byte past the end"},
    {1000, 499, true, false, true, "from the start to one byte before the end"},
    {1000, 0, true, false, true, "empty, at the start"},
    {1200, 100, true, false, true, "inside"},
    {1200, 0, true, false, true, "empty, inside"},
    {1400, 100, true, false, true, "inside, to the end"},
    {1499, 1, true, false, true, "the last byte"},
    {1400, 101, false, true, true, "from inside to one byte past the end"},
    {1500, 10, false, false, false, "right behind the partition"},
    {1500, 0, false, false, false, "empty, at the end"},
    {2000, 10, false, false, false, "behind the partition"},
    {900, 100, false, false, false, "right before the partition"},
    {100, 50, false, false, false, "before the partition"},
    {500, 0, false, false, false, "empty, before the partition"},
    {900, 101, false, true, true, "the first byte and what stands before it"},
    {900, 600, false, true, true, "the whole partition and what stands before it"},
    {900, 700, false, true, true, "more than the partition on both sides"},
};

class PartitionExtentsTest : public testing::Test {
protected:
    PartitionExtentsTest() { partition_.Initialize(entries::Gpt(kStart, kLength)); }

    PartitionGPT partition_;
    support::LoggerCapture log_;
};

TEST_F(PartitionExtentsTest, ContainsExtent_EveryPlace_AnswersAndReportsPartialOverlapsOnly) {
    for (const ExtentCase& extent : kExtents) {
        log_.Clear();
        EXPECT_EQ(extent.contained, partition_.contains_extent(extent.offset, extent.length)) << extent.what;
        EXPECT_EQ(extent.partial ? 1U : 0U, log_.all().size()) << extent.what << "\n" << log_;
    }
}

TEST_F(PartitionExtentsTest, ContainsExtent_PartialOverlap_ReportsBothWithTheirLastBytes) {
    partition_.contains_extent(900, 101);

    EXPECT_THAT(log_.all(), ElementsAre(Error(
                                "bmr_common::Partition::contains_extent extent (900 to 1000) only partially "
                                "inside partition (1000 to 1499 length 500).")));
}

TEST_F(PartitionExtentsTest, ContainsExtent_BeyondFourGigabytes_ComparesWholeNumbers) {
    partition_.Initialize(entries::Gpt(3 * kTebibyte, 2 * kTebibyte));

    EXPECT_TRUE(partition_.contains_extent(3 * kTebibyte, 2 * kTebibyte));
    EXPECT_TRUE(partition_.contains_extent(4 * kTebibyte, kTebibyte));
    EXPECT_FALSE(partition_.contains_extent(kTebibyte, kTebibyte));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionExtentsTest, IsExtentOverlapped_EveryPlace_AnswersSilently) {
    for (const ExtentCase& extent : kExtents) {
        EXPECT_EQ(extent.overlapped, partition_.IsExtentOverlapped(extent.offset, extent.length))
            << extent.what;
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionExtentsTest, ContainsExtent_NoLength_LogsAndAnswersFalse) {
    for (const std::int64_t length : {std::int64_t{0}, std::int64_t{-1}}) {
        log_.Clear();
        partition_.Initialize(entries::Gpt(kStart, length));

        EXPECT_FALSE(partition_.contains_extent(kStart, length));
        EXPECT_THAT(
            log_.all(),
            ElementsAre(Error("bmr_common::Partition::contains_extent partition length is less than 1 (" +
                              std::to_string(length) + ")")));
    }
}

TEST_F(PartitionExtentsTest, IsExtentOverlapped_NoLength_LogsAndAnswersFalse) {
    for (const std::int64_t length : {std::int64_t{0}, std::int64_t{-1}}) {
        log_.Clear();
        partition_.Initialize(entries::Gpt(kStart, length));

        EXPECT_FALSE(partition_.IsExtentOverlapped(kStart, 10));
        EXPECT_THAT(
            log_.all(),
            ElementsAre(Error("bmr_common::Partition::IsExtentOverlapped partition length is less than 1 (" +
                              std::to_string(length) + ")")));
    }
}

TEST_F(PartitionExtentsTest, EndBeyondTheNumbers_NothingIsContainedOrOverlapped) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    partition_.Initialize(entries::Gpt(kMost - 1, kMost));

    EXPECT_FALSE(partition_.contains_extent(1000, 500));
    EXPECT_FALSE(partition_.IsExtentOverlapped(1000, 500));
}

TEST_F(PartitionExtentsTest, GptUnused_ContainsNothingAndSaysNothing) {
    partition_.Initialize(entries::Gpt(kStart, 0, entries::kUnused));

    EXPECT_FALSE(partition_.contains_extent(kStart, 0));
    partition_.Initialize(entries::Gpt(kStart, kLength, entries::kUnused));
    EXPECT_FALSE(partition_.contains_extent(kStart, kLength));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionExtentsTest, GptUnused_MayBeOverlapped) {
    partition_.Initialize(entries::Gpt(kStart, kLength, entries::kUnused));

    EXPECT_TRUE(partition_.IsExtentOverlapped(kStart, kLength));
}

class PartitionMbrExtentsTest : public testing::Test {
protected:
    PARTITION_INFORMATION_EX entry_ = entries::Mbr(kStart, kLength);
    PartitionMBR partition_;
    support::LoggerCapture log_;
};

TEST_F(PartitionMbrExtentsTest, Recognized_ContainsItsExtent) {
    partition_.Initialize(entry_);

    EXPECT_TRUE(partition_.contains_extent(kStart, kLength));
}

TEST_F(PartitionMbrExtentsTest, RecognizedOtherThanOne_ContainsNothingAndSaysNothing) {
    for (const std::uint8_t recognized : {std::uint8_t{0}, std::uint8_t{2}, std::uint8_t{0xFF}}) {
        entry_.Mbr.RecognizedPartition = recognized;
        partition_.Initialize(entry_);

        EXPECT_FALSE(partition_.contains_extent(kStart, kLength)) << static_cast<int>(recognized);
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionMbrExtentsTest, Unused_ContainsNothingAndSaysNothing) {
    entry_.Mbr.PartitionType = 0;
    partition_.Initialize(entry_);

    EXPECT_FALSE(partition_.contains_extent(kStart, kLength));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionMbrExtentsTest, UnusedOrNotRecognized_MayBeOverlapped) {
    entry_.Mbr.RecognizedPartition = 0;
    entry_.Mbr.PartitionType = 0;
    partition_.Initialize(entry_);

    EXPECT_TRUE(partition_.IsExtentOverlapped(kStart, kLength));
}

}  // namespace
}  // namespace bmr_common

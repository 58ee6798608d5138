#include "common/disk/partition_mbr.h"
#include "support/logger_capture.h"
#include "support/text.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/partition_entries.h"
#include "unit/common/disk/simulated_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using made::GptManager;
using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMiB = 1LL << 20;

// A row as one line: kind, operation, offset, length and number.
std::string Described(const PartitionRow& row) {
    return support::Ansi(row.kind) + "/" + support::Ansi(row.operation) + " " + std::to_string(row.offset) +
           "+" + std::to_string(row.length) + " #" + std::to_string(row.partition_number);
}

class PartitionManagerRowsTest : public testing::Test {
protected:
    std::vector<std::string> RowsOf(const GptManager& manager, std::int64_t disk_size) {
        DiskRow disk;
        disk.size = static_cast<std::uint64_t>(disk_size);
        rows_.assign(1, PartitionRow{});
        EXPECT_TRUE(manager.GetEnumDiskPartitionVector(disk, rows_));
        std::vector<std::string> described;
        for (const PartitionRow& row : rows_) {
            described.push_back(Described(row));
        }
        return described;
    }

    std::vector<PartitionRow> rows_;
    support::LoggerCapture log_;
};

TEST_F(PartitionManagerRowsTest, DiskSizeZero_LogsAndGivesNoRows) {
    EXPECT_THAT(RowsOf(GptManager{entries::Gpt(kMiB, kMiB)}, 0), IsEmpty());
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("bmr_common::PartitionManagerGPT::GetEnumDiskPartitionVector disk size is 0 no "
                          "partitions will be visible")));
}

TEST_F(PartitionManagerRowsTest, EveryTable_HasItsRows) {
    const auto gpt = [](std::int64_t offset, std::int64_t length) { return entries::Gpt(offset, length); };
    EXPECT_THAT(RowsOf(GptManager{gpt(17408, 100 * kMiB - 17408)}, 100 * kMiB),
                ElementsAre("Primary/Existing 17408+104840192 #1"));
    EXPECT_THAT(
        RowsOf(GptManager{gpt(3 * kMiB, 97 * kMiB)}, 100 * kMiB),
        ElementsAre("Unallocated/Unallocated 1048576+2097152 #-1", "Primary/Existing 3145728+101711872 #1"));
    EXPECT_THAT(RowsOf(GptManager(), 100 * kMiB),
                ElementsAre("Unallocated/Unallocated 1048576+103809024 #-1"));
    EXPECT_THAT(RowsOf(GptManager(), kMiB), IsEmpty());
    // Not sorted, with a gap.
    EXPECT_THAT(RowsOf(GptManager{gpt(50 * kMiB, 10 * kMiB), gpt(kMiB, 9 * kMiB), gpt(10 * kMiB, 10 * kMiB)},
                       60 * kMiB),
                ElementsAre("Primary/Existing 1048576+9437184 #1", "Primary/Existing 10485760+10485760 #2",
                            "Unallocated/Unallocated 20971520+31457280 #-1",
                            "Primary/Existing 52428800+10485760 #3"));
    // A gap of one byte, and an overlap.
    EXPECT_THAT(RowsOf(GptManager{gpt(kMiB, kMiB - 1), gpt(2 * kMiB, kMiB)}, 3 * kMiB),
                ElementsAre("Primary/Existing 1048576+1048575 #1", "Unallocated/Unallocated 2097151+1 #-1",
                            "Primary/Existing 2097152+1048576 #2"));
    EXPECT_THAT(RowsOf(GptManager{gpt(kMiB, 10 * kMiB), gpt(5 * kMiB, 10 * kMiB)}, 15 * kMiB),
                ElementsAre("Primary/Existing 1048576+10485760 #1", "Primary/Existing 5242880+10485760 #2"));
}

TEST_F(PartitionManagerRowsTest, PartitionRow_TakesBootFlagAndGuids) {
    PARTITION_INFORMATION_EX system = entries::Gpt(kMiB, kMiB, entries::kEfiSystem);
    system.Gpt.PartitionId = entries::kForeign;
    system.PartitionNumber = 9;
    RowsOf(GptManager{system, entries::Gpt(2 * kMiB, kMiB)}, 3 * kMiB);

    ASSERT_EQ(2U, rows_.size());
    EXPECT_TRUE(rows_[0].active);
    EXPECT_TRUE(IsEqualGUID(entries::kEfiSystem, rows_[0].gpt_type));
    EXPECT_TRUE(IsEqualGUID(entries::kForeign, rows_[0].gpt_id));
    EXPECT_EQ(rows_[0].length, rows_[0].length_copy);
    EXPECT_EQ(1, rows_[0].partition_number) << "counted, not the system's number";
    EXPECT_FALSE(rows_[1].active);
}

TEST_F(PartitionManagerRowsTest, EntryOfAnotherKind_EndsTheRowsAfterItsGap) {
    GptManager manager{entries::Gpt(kMiB, kMiB), entries::Gpt(20 * kMiB, kMiB)};
    const auto foreign = boost::make_shared<PartitionMBR>();
    foreign->Initialize(entries::Mbr(10 * kMiB, kMiB));
    manager.list().push_back(foreign);

    EXPECT_THAT(RowsOf(manager, 100 * kMiB), ElementsAre("Primary/Existing 1048576+1048576 #1",
                                                         "Unallocated/Unallocated 2097152+8388608 #-1"));
}

TEST_F(PartitionManagerRowsTest, EntryBeyondTheNumbers_IsARowAllTheSame) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const GptManager manager{entries::Gpt(kMiB, kMost), entries::Gpt(kMost - 1, kMost)};

    EXPECT_EQ("Primary/Existing 1048576+9223372036854775807 #1", RowsOf(manager, 100 * kMiB).front());
}

}  // namespace
}  // namespace bmr_common

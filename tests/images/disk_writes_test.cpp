// GPT disks on images, edited and written by the library. They are read back on a new machine here, and later
// by the partitioning tools.

#include "common/disk/partition_manager_gpt.h"
#include "images/written_table.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using namespace written;
using bmr_common::PartitionManagerGPT;

// A manager with the table of disk 0 of a machine.
class Edited {
public:
    explicit Edited(const std::string& name, const std::string& source = "edit-gpt")
        : machine_(source, name), manager_(0) {
        Read(manager_);
    }

    PartitionManagerGPT* operator->() { return &manager_; }

    // Returns the start and size used, in bytes; zeros when no partition was added.
    std::pair<std::int64_t, std::int64_t> Add(std::int64_t start, std::int64_t size, const char* type,
                                              std::uint32_t alignment = kAlignment,
                                              std::int64_t minimum = kSector) {
        std::int64_t used_start = 0;
        std::int64_t used_size = 0;
        const bool added = manager_.AddPartitionInMemory(start, size, minimum, kDiskSize, alignment,
                                                         Guid(type), &used_start, &used_size);
        return added ? std::pair(used_start, used_size) : std::pair(0LL, 0LL);
    }

private:
    Machine machine_;
    PartitionManagerGPT manager_;
};

TEST(GptWrites, Commit_Unchanged_SortsAndNumbersAndKeepsTheRest) {
    {
        Edited disk("gpt-unchanged");
        ASSERT_TRUE(disk->CommitPartitionTable());
    }
    ExpectWritten("gpt-unchanged", GptTable({kGptSystem, kGptReserved, kGptLongName, kGptUmlauts}));
}

TEST(GptWrites, Commit_AddedPartitions_AreThere) {
    constexpr const char* kFirst = "BBBBBBBB-0000-4000-8000-000000000001";
    constexpr const char* kSecond = "BBBBBBBB-0000-4000-8000-000000000002";
    {
        const IssuedGuids guids({kFirst, kSecond});
        Edited disk("gpt-added");
        EXPECT_EQ(std::pair(11 * kMiB, 3 * kMiB), disk.Add(11 * kMiB, 3 * kMiB, kRecovery));
        EXPECT_EQ(std::pair(7 * kMiB, 1 * kMiB), disk.Add(6 * kMiB + 1, 512 * kKiB, kBasicData));
        ASSERT_TRUE(disk->CommitPartitionTable());
    }
    ExpectWritten("gpt-added", GptTable({kGptSystem,
                                         kGptReserved,
                                         kGptLongName,
                                         {4, 14336, 2048, kBasicData, kSecond, kNewName},
                                         Numbered(5, kGptUmlauts),
                                         {6, 22528, 6144, kRecovery, kFirst, kNewName}}));
}

TEST(GptWrites, Commit_AddedWithMoreThanThereIs_TakesAllButTheLastMegabyte) {
    constexpr const char* kId = "BBBBBBBB-0000-4000-8000-000000000003";
    {
        const IssuedGuids guids({kId});
        Edited disk("gpt-added-to-the-end");
        EXPECT_EQ(std::pair(10 * kMiB, 5 * kMiB), disk.Add(10 * kMiB, 100 * kMiB, kBasicData));
        ASSERT_TRUE(disk->CommitPartitionTable());
    }
    ExpectWritten("gpt-added-to-the-end", GptTable({kGptSystem,
                                                    kGptReserved,
                                                    kGptLongName,
                                                    kGptUmlauts,
                                                    {5, 20480, 10240, kBasicData, kId, kNewName}}));
}

TEST(GptWrites, DeletePartitionsAndWrite_Two_LeavesTheOthers) {
    {
        Edited disk("gpt-deleted");
        ASSERT_TRUE(disk->DeletePartitionsAndWrite({8 * kMiB, 2 * kMiB}));
    }
    ExpectWritten("gpt-deleted", GptTable({kGptSystem, Numbered(2, kGptLongName)}));
}

TEST(GptWrites, DeletePartitionsAndWrite_All_LeavesAnEmptyTable) {
    {
        Edited disk("gpt-emptied");
        ASSERT_TRUE(disk->DeletePartitionsAndWrite({1 * kMiB, 2 * kMiB, 4 * kMiB, 8 * kMiB}));
    }
    ExpectWritten("gpt-emptied", GptTable({}));
}

TEST(GptWrites, Commit_Resized_ChangesTheSizesOnly) {
    {
        Edited disk("gpt-resized");
        ASSERT_TRUE(disk->ResizePartitionInMemory(4 * kMiB, 4 * kMiB, kDiskSize, kAlignment));
        ASSERT_TRUE(disk->ResizePartitionInMemory(8 * kMiB, 1 * kMiB, kDiskSize, kAlignment));
        ASSERT_TRUE(disk->CommitPartitionTable());
    }
    Partition grown = kGptLongName;
    grown.size = 8192;
    Partition shrunk = kGptUmlauts;
    shrunk.size = 2048;
    ExpectWritten("gpt-resized", GptTable({kGptSystem, kGptReserved, grown, shrunk}));
}

TEST(GptWrites, Commit_FullTableAddedBackwards_IsInOrder) {
    constexpr unsigned kEntries = 128;
    constexpr std::int64_t kUnit = 64 * kKiB;
    const auto id = [](unsigned number) {
        std::string digits = std::to_string(number);
        return "CCCCCCCC-0000-4000-8000-" + std::string(12 - digits.size(), '0') + digits;
    };
    std::vector<std::string> ids;
    for (unsigned number = kEntries; number >= 1; --number) {
        ids.push_back(id(number));
    }
    {
        const IssuedGuids guids(ids);
        Edited disk("gpt-full");
        ASSERT_TRUE(disk->DeletePartitionsAndWrite({1 * kMiB, 2 * kMiB, 4 * kMiB, 8 * kMiB}));
        for (unsigned number = kEntries; number >= 1; --number) {
            const std::int64_t start = kMiB + (number - 1) * kUnit;
            ASSERT_EQ(std::pair(start, kUnit), disk.Add(start, kUnit, kBasicData, kUnit));
        }
        ASSERT_TRUE(disk->CommitPartitionTable());
    }
    std::vector<Partition> partitions;
    for (unsigned number = 1; number <= kEntries; ++number) {
        partitions.push_back(
            {number, 2048 + (number - 1) * std::int64_t{128}, 128, kBasicData, id(number), kNewName});
    }
    ExpectWritten("gpt-full", GptTable(partitions));
}

TEST(GptWrites, Commit_Twice_WritesTheSecondTableIntoTheSameCopy) {
    constexpr const char* kId = "BBBBBBBB-0000-4000-8000-000000000004";
    {
        const IssuedGuids guids({kId});
        Edited disk("gpt-twice");
        ASSERT_TRUE(disk->DeletePartitionsAndWrite({1 * kMiB}));
        EXPECT_EQ(std::pair(1 * kMiB, 1 * kMiB), disk.Add(1 * kMiB, 1 * kMiB, kRecovery));
        ASSERT_TRUE(disk->DeletePartitionsAndWrite({4 * kMiB}));
    }
    ExpectWritten(
        "gpt-twice",
        GptTable({{1, 2048, 2048, kRecovery, kId, kNewName}, kGptReserved, Numbered(3, kGptUmlauts)}));
}

TEST(GptWrites, Commit_PrimaryHeaderDamaged_RepairsIt) {
    {
        Edited disk("gpt-repaired", "edit-gpt-damaged");
        ASSERT_TRUE(disk->DeletePartitionsAndWrite({8 * kMiB}));
    }
    ExpectWritten("gpt-repaired", GptTable({kGptSystem, kGptReserved, kGptLongName}));
}

}  // namespace

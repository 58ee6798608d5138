#include "common/record/partition_rows.h"

#include "support/logger_capture.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

constexpr std::int64_t kMiB = 1024 * 1024;
constexpr std::int64_t kDiskLength = 1000 * kMiB;
constexpr std::uint8_t kNtfs = 7;
constexpr std::uint8_t kExtended = 5;
constexpr std::uint8_t kExtendedLba = 15;

PARTITION_INFORMATION Entry(std::int64_t offset_mib, std::int64_t length_mib, std::uint32_t number,
                            std::uint8_t type = kNtfs, bool active = false) {
    PARTITION_INFORMATION entry{};
    entry.StartingOffset.QuadPart = offset_mib * kMiB;
    entry.PartitionLength.QuadPart = length_mib * kMiB;
    entry.PartitionNumber = number;
    entry.PartitionType = type;
    entry.BootIndicator = active;
    return entry;
}

const PARTITION_INFORMATION kEmptySlot{};

void Build(const std::vector<PARTITION_INFORMATION>& entries, std::int64_t disk_length,
           std::vector<PartitionRow>& rows) {
    BuildPartitionRows(entries, disk_length, rows);
}

// A row as in the tables below: offset and length in MiB, kind, operation, number.
struct Row {
    std::int64_t offset;
    std::int64_t length;
    std::wstring kind;
    std::wstring operation;
    std::int32_t number;

    bool operator==(const Row&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.offset << '+' << row.length << ' ' << std::string(row.kind.begin(), row.kind.end())
               << '/' << std::string(row.operation.begin(), row.operation.end()) << " #" << row.number;
}

std::vector<Row> RowsOf(const std::vector<PARTITION_INFORMATION>& entries,
                        std::int64_t disk_length = kDiskLength) {
    std::vector<PartitionRow> built(1);  // previous content must be replaced
    BuildPartitionRows(entries, disk_length, built);
    std::vector<Row> rows;
    for (const PartitionRow& row : built) {
        EXPECT_EQ(row.length, row.length_copy);
        EXPECT_EQ(row.hidden, 0);
        rows.push_back({row.offset / kMiB, row.length / kMiB, row.kind, row.operation, row.partition_number});
    }
    return rows;
}

TEST(BuildPartitionRows, EmptyTable_IsOneUnallocatedRowFromTheFirstMegabyte) {
    EXPECT_EQ(RowsOf({}), (std::vector<Row>{{1, 999, L"Unallocated", L"Unallocated", -1}}));
    EXPECT_EQ(RowsOf({kEmptySlot, kEmptySlot, kEmptySlot, kEmptySlot}),
              (std::vector<Row>{{1, 999, L"Unallocated", L"Unallocated", -1}}));
}

TEST(BuildPartitionRows, PartitionAtTheFirstMegabyte_HasNoGapBeforeIt) {
    EXPECT_EQ(RowsOf({Entry(1, 100, 1)}), (std::vector<Row>{{1, 100, L"Primary", L"Existing", 1},
                                                            {101, 899, L"Unallocated", L"Unallocated", -1}}));
}

TEST(BuildPartitionRows, PartitionAtTheSecondMegabyte_HasAGapOfOneMegabyteBeforeIt) {
    EXPECT_EQ(RowsOf({Entry(2, 998, 1)}), (std::vector<Row>{{1, 1, L"Unallocated", L"Unallocated", -1},
                                                            {2, 998, L"Primary", L"Existing", 1}}));
}

TEST(BuildPartitionRows, PartitionBeforeTheFirstMegabyte_HasNoGapBeforeIt) {
    std::vector<PartitionRow> rows;
    PARTITION_INFORMATION entry = Entry(0, 0, 1);
    entry.StartingOffset.QuadPart = 63 * 512;
    entry.PartitionLength.QuadPart = kDiskLength - 63 * 512;
    Build({entry}, kDiskLength, rows);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].offset, 63 * 512);
}

TEST(BuildPartitionRows, ExtendedWithOneLogical_IsLogicalThenFreeSpace) {
    for (const std::uint8_t type : {kExtended, kExtendedLba}) {
        EXPECT_EQ(RowsOf({Entry(1, 99, 1), Entry(100, 500, 0, type), kEmptySlot, kEmptySlot,
                          Entry(101, 199, 2), kEmptySlot, kEmptySlot, kEmptySlot}),
                  (std::vector<Row>{{1, 99, L"Primary", L"Existing", 1},
                                    {100, 1, L"Free space", L"Free space", -1},
                                    {101, 199, L"Logical", L"Existing", 2},
                                    {300, 300, L"Free space", L"Free space", -1},
                                    {600, 400, L"Unallocated", L"Unallocated", -1}}));
    }
}

TEST(BuildPartitionRows, SeveralLogicals_AreTakenFromEveryFourthSlot) {
    EXPECT_EQ(
        RowsOf({Entry(1, 999, 0, kExtended), kEmptySlot, kEmptySlot, kEmptySlot, Entry(1, 400, 1),
                Entry(401, 599, 0, kExtended), kEmptySlot, kEmptySlot, Entry(401, 599, 2), kEmptySlot,
                kEmptySlot, kEmptySlot}),
        (std::vector<Row>{{1, 400, L"Logical", L"Existing", 1}, {401, 599, L"Logical", L"Existing", 2}}));
}

TEST(BuildPartitionRows, EntryWithoutNumber_IsSkipped) {
    EXPECT_EQ(RowsOf({Entry(1, 100, 0, kNtfs), Entry(500, 500, 1)}),
              (std::vector<Row>{{1, 499, L"Unallocated", L"Unallocated", -1},
                                {500, 500, L"Primary", L"Existing", 1}}));
}

TEST(BuildPartitionRows, Partition_CarriesTypeAndBootFlag) {
    std::vector<PartitionRow> rows;
    Build({Entry(1, 10, 1, kNtfs, true), Entry(11, 989, 2, 0x27)}, kDiskLength, rows);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_TRUE(rows[0].active);
    EXPECT_EQ(rows[0].mbr_type, kNtfs);
    EXPECT_FALSE(rows[1].active);
    EXPECT_EQ(rows[1].mbr_type, 0x27);
}

TEST(BuildPartitionRows, BootIndicatorOtherThanOne_IsNotActive) {
    PARTITION_INFORMATION entry = Entry(1, 10, 1);
    entry.BootIndicator = 0x80;
    std::vector<PartitionRow> rows;
    Build({entry}, kDiskLength, rows);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_FALSE(rows[0].active);
}

TEST(BuildPartitionRows, EntriesBetweenTheLogicals_AreNotLookedAt) {
    EXPECT_EQ(RowsOf({Entry(1, 999, 0, kExtended), kEmptySlot, kEmptySlot, kEmptySlot, Entry(1, 400, 1),
                      Entry(401, 100, 8), Entry(501, 100, 9), kEmptySlot}),
              (std::vector<Row>{{1, 400, L"Logical", L"Existing", 1},
                                {401, 599, L"Free space", L"Free space", -1}}));
}

TEST(BuildPartitionRows, EntriesAfterThePrimariesWithoutContainer_AreNotLookedAt) {
    EXPECT_EQ(RowsOf({Entry(1, 999, 1), kEmptySlot, kEmptySlot, kEmptySlot, Entry(1, 400, 2)}),
              (std::vector<Row>{{1, 999, L"Primary", L"Existing", 1}}));
}

TEST(BuildPartitionRows, ContainerWithANumber_IsAPrimary) {
    EXPECT_EQ(RowsOf({Entry(1, 999, 3, kExtended)}),
              (std::vector<Row>{{1, 999, L"Primary", L"Existing", 3}}));
}

TEST(BuildPartitionRows, EmptyContainer_IsFreeSpace) {
    EXPECT_EQ(RowsOf({Entry(100, 900, 0, kExtended)}),
              (std::vector<Row>{{1, 99, L"Unallocated", L"Unallocated", -1},
                                {100, 900, L"Free space", L"Free space", -1}}));
}

TEST(BuildPartitionRows, PrimaryBehindAContainer_FollowsItsFreeSpace) {
    EXPECT_EQ(
        RowsOf({Entry(1, 499, 0, kExtended), Entry(600, 400, 1), kEmptySlot, kEmptySlot, Entry(1, 100, 2)}),
        (std::vector<Row>{{1, 100, L"Logical", L"Existing", 2},
                          {101, 399, L"Free space", L"Free space", -1},
                          {500, 100, L"Unallocated", L"Unallocated", -1},
                          {600, 400, L"Primary", L"Existing", 1}}));
}

TEST(BuildPartitionRows, SlotsInReversedDiskOrder_StayInSlotOrder) {
    EXPECT_EQ(RowsOf({Entry(500, 100, 2), Entry(1, 100, 1)}),
              (std::vector<Row>{{1, 499, L"Unallocated", L"Unallocated", -1},
                                {500, 100, L"Primary", L"Existing", 2},
                                {1, 100, L"Primary", L"Existing", 1},
                                {101, 899, L"Unallocated", L"Unallocated", -1}}));
}

TEST(BuildPartitionRows, GapOfOneByte_IsARow) {
    PARTITION_INFORMATION entry = Entry(1, 10, 1);
    entry.StartingOffset.QuadPart += 1;
    std::vector<PartitionRow> rows;
    Build({entry}, 11 * kMiB + 1, rows);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].offset, kMiB);
    EXPECT_EQ(rows[0].length, 1);
    EXPECT_EQ(rows[0].length_copy, 1);
}

TEST(BuildPartitionRows, LyingLengths_AreHarmless) {
    PARTITION_INFORMATION entry = Entry(1, 0, 1);
    entry.PartitionLength.QuadPart = INT64_MAX;
    std::vector<PartitionRow> rows;
    Build({entry, Entry(2, 2, 2)}, kDiskLength, rows);
    EXPECT_FALSE(rows.empty());
}

DiskRow DiskWith(const std::vector<std::pair<std::int64_t, std::int32_t>>& offsets_and_numbers) {
    DiskRow disk;
    for (const auto& [offset, number] : offsets_and_numbers) {
        PartitionRow row;
        row.offset = offset;
        row.partition_number = number;
        row.volume = L"V" + std::to_wstring(offset);
        disk.partitions.push_back(row);
    }
    return disk;
}

std::vector<std::int32_t> NumbersOf(const DiskRow& disk) {
    std::vector<std::int32_t> numbers;
    for (const PartitionRow& row : disk.partitions) {
        numbers.push_back(row.partition_number);
    }
    return numbers;
}

TEST(SortDiskPartitionNumbers, ReversedNumbers_FollowTheOffsets) {
    const support::LoggerCapture log;
    DiskRow disk = DiskWith({{100, 2}, {200, -1}, {300, 1}});
    SortDiskPartitionNumbers(disk);
    EXPECT_EQ(NumbersOf(disk), (std::vector<std::int32_t>{1, -1, 2}));
    EXPECT_TRUE(
        log.Contains(support::kHostTrace,
                     "SortDiskPartitionNumbers changing partition number from 2 to 1 for volume V100"))
        << log;
    EXPECT_TRUE(
        log.Contains(support::kHostTrace,
                     "SortDiskPartitionNumbers changing partition number from 1 to 2 for volume V300"));
}

TEST(SortDiskPartitionNumbers, RightNumbers_AreLeftWithoutALine) {
    const support::LoggerCapture log;
    DiskRow disk = DiskWith({{100, 1}, {300, 2}});
    SortDiskPartitionNumbers(disk);
    EXPECT_EQ(NumbersOf(disk), (std::vector<std::int32_t>{1, 2}));
    EXPECT_TRUE(log.all().empty()) << log;
}

TEST(SortDiskPartitionNumbers, RepeatedOffset_NumbersTheLaterRowOnly) {
    DiskRow disk = DiskWith({{100, 7}, {100, 8}, {200, 9}});
    SortDiskPartitionNumbers(disk);
    EXPECT_EQ(NumbersOf(disk), (std::vector<std::int32_t>{7, 1, 2}));
}

TEST(CreateFakeDisk, AnyNumber_IsFiveHundredUnallocatedBytes) {
    const DiskRow disk = CreateFakeDisk(4);
    EXPECT_EQ(disk.size, 500U);
    EXPECT_EQ(disk.disk_number, 4U);
    ASSERT_EQ(disk.partitions.size(), 1U);
    EXPECT_EQ(disk.partitions[0].offset, 0);
    EXPECT_EQ(disk.partitions[0].length, 500);
    EXPECT_EQ(disk.partitions[0].kind, L"Unallocated");
    EXPECT_EQ(disk.partitions[0].operation, L"Unallocated");
    EXPECT_EQ(disk.partitions[0].partition_number, 0);
}

std::vector<std::pair<std::uint32_t, bool>> NumbersAndFakes(const std::vector<DiskRow>& disks) {
    std::vector<std::pair<std::uint32_t, bool>> result;
    for (const DiskRow& disk : disks) {
        result.emplace_back(disk.disk_number, disk.size == 500);
    }
    return result;
}

DiskRow RealDisk(std::uint32_t number) {
    DiskRow disk;
    disk.disk_number = number;
    disk.size = 1000;
    return disk;
}

TEST(InsertFakeDisks, MissingNumbers_AreFilledUpToTheMaximum) {
    std::vector<DiskRow> disks = {RealDisk(1), RealDisk(3)};
    InsertFakeDisks(4, disks);
    EXPECT_EQ(NumbersAndFakes(disks), (std::vector<std::pair<std::uint32_t, bool>>{
                                          {0, true}, {1, false}, {2, true}, {3, false}, {4, true}}));
}

TEST(InsertFakeDisks, DisksOutOfOrder_ArePutInOrder) {
    std::vector<DiskRow> disks = {RealDisk(1), RealDisk(0)};
    InsertFakeDisks(1, disks);
    EXPECT_EQ(NumbersAndFakes(disks), (std::vector<std::pair<std::uint32_t, bool>>{{0, false}, {1, false}}));
}

TEST(InsertFakeDisks, NoMaximum_AddsNothing) {
    std::vector<DiskRow> disks;
    InsertFakeDisks(-1, disks);
    EXPECT_TRUE(disks.empty());
}

TEST(MakeWholeDiskRow, EarlierRows_AreDropped) {
    DiskRow disk = DiskWith({{100, 1}, {200, 2}});
    disk.size = 4096;
    MakeWholeDiskRow(disk);
    ASSERT_EQ(disk.partitions.size(), 1U);
    EXPECT_EQ(disk.partitions[0].offset, 0);
    EXPECT_EQ(disk.partitions[0].length, 4096);
    EXPECT_EQ(disk.partitions[0].partition_number, 0);
}

}  // namespace

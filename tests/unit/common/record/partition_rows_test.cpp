#include "common/record/partition_rows.h"

#include "support/each_of.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

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

Row Primary(std::int64_t offset, std::int64_t length, std::int32_t number) {
    return {offset, length, L"Primary", L"Existing", number};
}

Row Logical(std::int64_t offset, std::int64_t length, std::int32_t number) {
    return {offset, length, L"Logical", L"Existing", number};
}

Row Free(std::int64_t offset, std::int64_t length) {
    return {offset, length, L"Free space", L"Free space", -1};
}

Row Unallocated(std::int64_t offset, std::int64_t length) {
    return {offset, length, L"Unallocated", L"Unallocated", -1};
}

std::vector<Row> RowsOf(const std::vector<PARTITION_INFORMATION>& entries) {
    std::vector<PartitionRow> built(1);  // previous content must be replaced
    BuildPartitionRows(entries, kDiskLength, built);
    std::vector<Row> rows;
    for (const PartitionRow& row : built) {
        EXPECT_EQ(row.length, row.length_copy);
        EXPECT_EQ(row.hidden, 0);
        rows.push_back({row.offset / kMiB, row.length / kMiB, row.kind, row.operation, row.partition_number});
    }
    return rows;
}

struct TableCase {
    const char* name;
    std::vector<PARTITION_INFORMATION> entries;
    std::vector<Row> rows;
};

// Container in the first slot, its logical partitions in every fourth slot from the fifth on.
const TableCase kTables[] = {
    {"EmptyTable", {}, {Unallocated(1, 999)}},
    {"FourEmptySlots", {kEmptySlot, kEmptySlot, kEmptySlot, kEmptySlot}, {Unallocated(1, 999)}},
    {"FromTheFirstMegabyte", {Entry(1, 100, 1)}, {Primary(1, 100, 1), Unallocated(101, 899)}},
    {"FromTheSecondMegabyte", {Entry(2, 998, 1)}, {Unallocated(1, 1), Primary(2, 998, 1)}},
    {"OneLogical",
     {Entry(1, 99, 1), Entry(100, 500, 0, kExtended), kEmptySlot, kEmptySlot, Entry(101, 199, 2)},
     {Primary(1, 99, 1), Free(100, 1), Logical(101, 199, 2), Free(300, 300), Unallocated(600, 400)}},
    {"OneLogicalInTheOtherType",
     {Entry(1, 99, 1), Entry(100, 500, 0, kExtendedLba), kEmptySlot, kEmptySlot, Entry(101, 199, 2)},
     {Primary(1, 99, 1), Free(100, 1), Logical(101, 199, 2), Free(300, 300), Unallocated(600, 400)}},
    {"SeveralLogicals",
     {Entry(1, 999, 0, kExtended), kEmptySlot, kEmptySlot, kEmptySlot, Entry(1, 400, 1),
      Entry(401, 599, 0, kExtended), kEmptySlot, kEmptySlot, Entry(401, 599, 2)},
     {Logical(1, 400, 1), Logical(401, 599, 2)}},
    {"EntryWithoutNumber",
     {Entry(1, 100, 0, kNtfs), Entry(500, 500, 1)},
     {Unallocated(1, 499), Primary(500, 500, 1)}},
    {"EntriesBetweenTheLogicals",
     {Entry(1, 999, 0, kExtended), kEmptySlot, kEmptySlot, kEmptySlot, Entry(1, 400, 1), Entry(401, 100, 8),
      Entry(501, 100, 9), kEmptySlot},
     {Logical(1, 400, 1), Free(401, 599)}},
    {"FifthEntryWithoutContainer",
     {Entry(1, 999, 1), kEmptySlot, kEmptySlot, kEmptySlot, Entry(1, 400, 2)},
     {Primary(1, 999, 1)}},
    {"ContainerWithANumber", {Entry(1, 999, 3, kExtended)}, {Primary(1, 999, 3)}},
    {"EmptyContainer", {Entry(100, 900, 0, kExtended)}, {Unallocated(1, 99), Free(100, 900)}},
    {"PrimaryBehindAContainer",
     {Entry(1, 499, 0, kExtended), Entry(600, 400, 1), kEmptySlot, kEmptySlot, Entry(1, 100, 2)},
     {Logical(1, 100, 2), Free(101, 399), Unallocated(500, 100), Primary(600, 400, 1)}},
    {"SlotsInReversedDiskOrder",
     {Entry(500, 100, 2), Entry(1, 100, 1)},
     {Unallocated(1, 499), Primary(500, 100, 2), Primary(1, 100, 1), Unallocated(101, 899)}},
};

TEST(BuildPartitionRows, EveryTable_HasItsRows) {
    for (const TableCase& table : kTables) {
        EXPECT_EQ(RowsOf(table.entries), table.rows) << table.name;
    }
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

TEST(BuildPartitionRows, BootIndicatorOtherThanOne_IsNotActive) {
    PARTITION_INFORMATION entry = Entry(1, 10, 1);
    entry.BootIndicator = 0x80;
    std::vector<PartitionRow> rows;
    Build({entry}, kDiskLength, rows);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_FALSE(rows[0].active);
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
    return support::EachOf(disk.partitions, &PartitionRow::partition_number);
}

TEST(SortDiskPartitionNumbers, ReversedNumbers_FollowTheOffsets) {
    const support::LoggerCapture log;
    DiskRow disk = DiskWith({{100, 2}, {200, -1}, {300, 1}});
    SortDiskPartitionNumbers(disk);
    EXPECT_EQ(NumbersOf(disk), (std::vector<std::int32_t>{1, -1, 2}));
    EXPECT_THAT(log.all(),
                testing::Contains(support::Trace(
                    "SortDiskPartitionNumbers changing partition number from 2 to 1 for volume V100")));
    EXPECT_THAT(log.all(),
                testing::Contains(support::Trace(
                    "SortDiskPartitionNumbers changing partition number from 1 to 2 for volume V300")));
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

}  // namespace

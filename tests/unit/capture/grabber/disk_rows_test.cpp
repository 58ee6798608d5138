#include "capture/grabber/disk_rows.h"

#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "unit/capture/grabber/example_machine.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace {

using orvane::VolumeOnDisk;
using support::Error;
using support::Warning;
using testing::ElementsAre;

// --- The largest disk number.

class ListedDisks : public bmr_common::DeviceManager {
public:
    void Put(const wchar_t* key, const bmr_common::DiskDriveManagerPtr& disk) { disks_[key] = disk; }
};

bmr_common::DiskDriveManagerPtr AnyDisk(std::uint32_t number) {
    return boost::make_shared<bmr_common::DiskDriveManagerUnknown>(number);
}

TEST(GetMaxPhysicalDiskId, NumberThatIsTooLarge_IsPassedOverWithALine) {
    const support::LoggerCapture log;
    ListedDisks disks;
    disks.Put(L"65535", AnyDisk(65'535));
    disks.Put(L"65536", AnyDisk(65'536));
    disks.Put(L"4294967295", AnyDisk(4'294'967'295));
    std::uint32_t maximum = 77;
    EXPECT_TRUE(orvane::GetMaxPhysicalDiskId(disks, maximum));
    EXPECT_EQ(maximum, 65'535U);
    // In the order of the map, which compares the numbers as texts.
    EXPECT_THAT(log.all(),
                ElementsAre(Warning("DeviceManager::GetMaxPhysicalDiskId disk number 4294967295 is too large "
                                    "- ignoring"),
                            Warning("DeviceManager::GetMaxPhysicalDiskId disk number 65536 is too large - "
                                    "ignoring")));
}

TEST(GetMaxPhysicalDiskId, OnlyNumbersThatAreTooLarge_FailAsWithoutDisks) {
    const support::LoggerCapture log;
    ListedDisks disks;
    disks.Put(L"65536", AnyDisk(65'536));
    std::uint32_t maximum = 77;
    EXPECT_FALSE(orvane::GetMaxPhysicalDiskId(disks, maximum));
    EXPECT_THAT(log.Lines(support::kHostError),
                ElementsAre("DeviceManager::GetMaxPhysicalDiskId no devices so no maximum id"));
}

TEST(GetMaxPhysicalDiskId, EmptyEntry_IsReportedByItsKey) {
    const support::LoggerCapture log;
    ListedDisks disks;
    disks.Put(L"1", AnyDisk(1));
    disks.Put(L"5", nullptr);
    std::uint32_t maximum = 77;
    EXPECT_TRUE(orvane::GetMaxPhysicalDiskId(disks, maximum));
    EXPECT_THAT(log.Messages(),
                ElementsAre(Error("DeviceManager::GetMaxPhysicalDiskId - NULL device found with id 5")));
}

// --- Existing disks.

class AddExistingDiskInformationTest : public testing::Test {
protected:
    // The row of the only disk of a machine, which has 10 GiB.
    DiskRow RowOf(const std::string& style_and_partitions) {
        const machine::Session session(machine::ParseDescription(
            R"({"disks": [{"index": 3, "size": "10 GiB", )" + style_and_partitions + "}]}", "one disk"));
        bmr_common::DeviceManager disks;
        EXPECT_TRUE(disks.InitializeWithCurrentDisks());
        DiskRow row;
        EXPECT_TRUE(orvane::AddExistingDiskInformation(*disks.GetDevice(3), row));
        EXPECT_EQ(row.disk_number, 3U);
        EXPECT_EQ(row.size, MiB(10240));
        EXPECT_EQ(row.bytes_per_sector, 512U);
        return row;
    }

    // The same row after FinishDiskRows.
    DiskRow FinishedRowOf(const std::string& style_and_partitions) {
        std::vector<DiskRow> rows = {RowOf(style_and_partitions)};
        orvane::FinishDiskRows(rows);
        return rows.front();
    }

    support::LoggerCapture log_;
};

const RowFacts kWholeDisk{L"Unallocated", L"Unallocated", 0, MiB(10240), 0, L"", L""};

TEST_F(AddExistingDiskInformationTest, GptWithoutPartitions_IsOneWholeDiskRow) {
    const DiskRow row =
        RowOf(R"("style": "gpt", "diskId": "{6f1f4a52-9c0d-4e1b-8a37-52d1b0c4e9a1}", "partitions": [])");
    EXPECT_EQ(row.partition_style, 1);
    EXPECT_EQ(row.disk_guid.Data1, 0x6f1f4a52U);
    EXPECT_THAT(FactsOf(row), ElementsAre(kWholeDisk));
}

constexpr char kReversedSlots[] = R"("style": "mbr", "partitions": [
        {"offset": "5000 MiB", "size": "100 MiB", "type": "ntfs"},
        {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"}])";

// Offset and number of every partition.
std::vector<std::pair<std::uint64_t, std::int32_t>> NumbersOf(const DiskRow& row) {
    std::vector<std::pair<std::uint64_t, std::int32_t>> numbers;
    for (const RowFacts& facts : FactsOf(row)) {
        if (facts.operation == L"Existing") {
            numbers.emplace_back(facts.offset, facts.number);
        }
    }
    return numbers;
}

TEST_F(AddExistingDiskInformationTest, MbrSlotsInReversedDiskOrder_KeepTheSystemsNumbers) {
    EXPECT_THAT(NumbersOf(RowOf(kReversedSlots)),
                testing::UnorderedElementsAre(std::pair(MiB(5000), 1), std::pair(MiB(1), 2)));
}

using FinishDiskRowsTest = AddExistingDiskInformationTest;

TEST_F(FinishDiskRowsTest, MbrSlotsInReversedDiskOrder_AreNumberedByOffset) {
    EXPECT_THAT(NumbersOf(FinishedRowOf(kReversedSlots)),
                testing::UnorderedElementsAre(std::pair(MiB(1), 1), std::pair(MiB(5000), 2)));
}

TEST_F(FinishDiskRowsTest, RowOfAWholeDisk_KeepsItsZero) {
    EXPECT_THAT(FactsOf(FinishedRowOf(R"("style": "raw")")), ElementsAre(kWholeDisk));
    std::vector<DiskRow> rows = {orvane::AddUnknownDiskInformation(1)};
    orvane::FinishDiskRows(rows);
    EXPECT_EQ(rows.front().partitions.front().partition_number, 0);
}

TEST_F(FinishDiskRowsTest, OnlyPartition_IsNumberedOne) {
    DiskRow row;
    row.partitions.emplace_back();
    row.partitions.front().partition_number = 3;
    std::vector<DiskRow> rows = {row};
    orvane::FinishDiskRows(rows);
    EXPECT_EQ(rows.front().partitions.front().partition_number, 1);
}

// A disk with an unknown partition style.
class OddDisk : public bmr_common::DiskDriveManagerUnknown {
public:
    OddDisk() : DiskDriveManagerUnknown(0) {}

    std::uint32_t GetPartitionStyle() const override { return 5; }
    const DRIVE_LAYOUT_INFORMATION_EX* GetPartitionLayoutExPtr() const override { return &layout_; }
    std::uint32_t GetPartitionCount() const override { return 1; }

private:
    DRIVE_LAYOUT_INFORMATION_EX layout_{};
};

TEST_F(AddExistingDiskInformationTest, OtherStyle_FailsWithALineThatShowsAnotherNumber) {
    DiskRow row;
    EXPECT_FALSE(orvane::AddExistingDiskInformation(OddDisk(), row));
    const std::vector<std::string> errors = log_.Lines(support::kHostError);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(std::regex_match(errors[0], std::regex("unsupported partition style -?[0-9]+"))) << log_;
    EXPECT_NE(errors[0], "unsupported partition style 5");
}

// --- Assigning volumes to rows.

struct Placing {
    const char* name;
    std::int64_t offset;
    std::int64_t length;
    int row;  // index of the row that gets the letter; -1: partly inside a row; -2: outside all rows
};

void PrintTo(const Placing& placing, std::ostream* out) {
    *out << placing.name;
}

DiskRow TwoRows() {
    DiskRow disk;
    disk.disk_number = 4;
    disk.partitions.resize(2);
    disk.partitions[0].offset = 1000;
    disk.partitions[0].length = 1000;
    disk.partitions[1].offset = 3000;
    disk.partitions[1].length = 500;
    return disk;
}

class SetPartitionVolumeLetterFileSystemPlace : public testing::TestWithParam<Placing> {};

TEST_P(SetPartitionVolumeLetterFileSystemPlace, Extent_IsJudgedByItsEnds) {
    const support::LoggerCapture log;
    std::vector<DiskRow> disks(1);
    disks[0].partitions.resize(1);  // disk 0; the volume is on another disk
    disks[0].partitions[0].length = 1000000;
    disks.push_back(TwoRows());
    const VolumeOnDisk volume{4, GetParam().offset, GetParam().length, L"C:\\", L"NTFS", L"the volume"};
    EXPECT_EQ(orvane::SetPartitionVolumeLetterFileSystem(volume, disks), GetParam().row >= 0);
    for (int row = 0; row < 2; ++row) {
        const PartitionRow& partition = disks[1].partitions[static_cast<std::size_t>(row)];
        EXPECT_EQ(partition.drive, row == GetParam().row ? L"C:\\" : L"") << row;
        EXPECT_EQ(partition.file_system, row == GetParam().row ? L"NTFS" : L"") << row;
    }
    EXPECT_EQ(disks[0].partitions[0].drive, L"");
    EXPECT_EQ(log.ContainsPart(support::kHostWarning, "only partially inside partition"),
              GetParam().row == -1)
        << log;
    EXPECT_EQ(log.ContainsPart(support::kHostWarning, "Failed to find extent"), GetParam().row == -2) << log;
}

INSTANTIATE_TEST_SUITE_P(
    Places, SetPartitionVolumeLetterFileSystemPlace,
    testing::Values(Placing{"exactly", 1000, 1000, 0}, Placing{"exactly the second", 3000, 500, 1},
                    Placing{"inside", 1200, 100, 0}, Placing{"at the start", 1000, 500, 0},
                    Placing{"at the end", 1500, 500, 0}, Placing{"empty inside", 1500, 0, 0},
                    Placing{"starts inside, ends past", 1500, 600, -1},
                    Placing{"starts before, ends inside", 900, 200, -1},
                    Placing{"same start, longer", 1000, 1001, -1},
                    Placing{"starts before, same end", 900, 1100, -1}, Placing{"around", 900, 1200, -1},
                    Placing{"over both", 1000, 2500, -1}, Placing{"before", 100, 100, -2},
                    Placing{"up to the start", 900, 100, -2}, Placing{"behind the end", 2000, 100, -2},
                    Placing{"empty at the end", 2000, 0, -2}, Placing{"behind all", 9000, 100, -2}));

}  // namespace

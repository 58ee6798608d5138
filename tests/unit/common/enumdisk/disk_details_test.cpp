// The whole enumeration of physical disks, and the placeholder rows for unused disk numbers.

#include "common/enumdisk/enum_disk.h"
#include "unit/common/enumdisk/enum_machine.h"
#include "unit/common/enumdisk/layout_bytes.h"

namespace {

using enum_machine::Error;
using enum_machine::kMiB;
using enum_machine::Trace;
using support::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kFailure[] = "Error occurred in EnumDisk::GetDiskDetails";

class DiskDetails : public enum_machine::EnumMachine {
protected:
    bool Get(const std::vector<DriveRow>* drives = nullptr) {
        return EnumDisk().GetDiskDetails(drives, disks_);
    }

    std::vector<std::uint32_t> Numbers() const {
        std::vector<std::uint32_t> numbers;
        for (const DiskRow& disk : disks_) {
            numbers.push_back(disk.disk_number);
        }
        return numbers;
    }
    std::vector<std::uint64_t> Sizes() const {
        std::vector<std::uint64_t> sizes;
        for (const DiskRow& disk : disks_) {
            sizes.push_back(disk.size);
        }
        return sizes;
    }

    // The logged steps from `first` to `last`.
    std::vector<LogLine> StepsBetween(const LogLine& first, const LogLine& last) const {
        std::vector<LogLine> steps;
        bool within = false;
        for (const LogLine& line : Steps()) {
            within = within || line == first;
            if (within) {
                steps.push_back(line);
            }
            if (within && line == last) {
                break;
            }
        }
        return steps;
    }

    std::vector<DiskRow> disks_;
};

struct Row {
    std::wstring kind;
    std::int64_t offset;
    std::int64_t length;
    std::int32_t number;
    bool operator==(const Row&) const = default;
};

std::vector<Row> RowsOf(const DiskRow& disk) {
    std::vector<Row> rows;
    for (const PartitionRow& row : disk.partitions) {
        rows.push_back({row.kind, row.offset / kMiB, row.length / kMiB, row.partition_number});
    }
    return rows;
}

TEST_F(DiskDetails, MbrAndGpt_AreTheMbrDiskAndAPlaceholder) {
    Use(enum_machine::kMbrAndGpt);
    EXPECT_TRUE(Get());
    ASSERT_THAT(disks_, SizeIs(2));
    EXPECT_EQ(disks_[0].size, 1000U * kMiB);
    EXPECT_EQ(disks_[0].disk_number, 0U);
    EXPECT_EQ(disks_[0].bytes_per_sector, 512U);
    EXPECT_EQ(disks_[0].partition_style, 2);
    EXPECT_EQ(disks_[0].disk_guid, GUID{});
    EXPECT_THAT(RowsOf(disks_[0]), ElementsAre(Row{L"Primary", 1, 100, 1}, Row{L"Primary", 101, 200, 2},
                                               Row{L"Unallocated", 301, 699, -1}));
    EXPECT_TRUE(disks_[0].partitions[0].active);
    EXPECT_FALSE(disks_[0].partitions[1].active);
    EXPECT_EQ(disks_[1].size, 500U);
    EXPECT_EQ(disks_[1].disk_number, 1U);
    ASSERT_THAT(disks_[1].partitions, SizeIs(1));
    EXPECT_EQ(disks_[1].partitions[0].kind, L"Unallocated");
    EXPECT_EQ(disks_[1].partitions[0].operation, L"Unallocated");
    EXPECT_EQ(disks_[1].partitions[0].offset, 0);
    EXPECT_EQ(disks_[1].partitions[0].length, 500);
    EXPECT_EQ(disks_[1].partitions[0].partition_number, 0);
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(DiskDetails, Laptop_NumbersItsLogicalPartitionsAfterThePrimaries) {
    UseExample("bios-laptop");
    EXPECT_TRUE(Get());
    ASSERT_THAT(disks_, SizeIs(1));
    EXPECT_THAT(RowsOf(disks_[0]),
                ElementsAre(Row{L"Primary", 1, 500, 1}, Row{L"Primary", 501, 150000, 2},
                            Row{L"Free space", 150501, 1, -1}, Row{L"Logical", 150502, 100000, 3},
                            Row{L"Free space", 250502, 1, -1}, Row{L"Logical", 250503, 54741, 4},
                            Row{L"Unallocated", 305244, 1, -1}));
}

TEST_F(DiskDetails, ManyDisks_AreOneRowForEachNumber) {
    UseExample("server-many-disks");
    EXPECT_TRUE(Get());
    EXPECT_THAT(Numbers(), ElementsAre(0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U));
    EXPECT_THAT(Sizes(),
                ElementsAre(500U, 500U, 1000204886016U, 500U, 500U, 500U, 500U, 500U, 500U, 500U, 500U));
}

TEST_F(DiskDetails, Index255_MakesTheList256Long) {
    Use(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr"}], "wmi": {"Win32_DiskDrive": [
        {"Index": 0}, {"Index": 255}]}})");
    EXPECT_TRUE(Get());
    ASSERT_THAT(disks_, SizeIs(256));
    EXPECT_EQ(disks_.front().size, 1U << 30);
    EXPECT_EQ(disks_.back().disk_number, 255U);
    EXPECT_EQ(disks_.back().size, 500U);
}

TEST_F(DiskDetails, UnavailableDisk_IsAPlaceholder) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayoutEx, 21, enum_machine::kDrive0);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
}

TEST_F(DiskDetails, OneDisk_IsReadInOrder) {
    Use(R"({"disks": [{"index": 0, "size": "4 MiB", "style": "mbr"}]})");
    EXPECT_TRUE(Get());
    EXPECT_THAT(
        StepsBetween(Trace("GetDiskDetails: No Of Disks: 1"), Trace("Leaving GetDiskDetails")),
        ElementsAre(Trace("GetDiskDetails: No Of Disks: 1"), Trace("Entering Get Drive Geometry"),
                    Trace("Opening the Drive \\\\.\\PhysicalDrive0"), Trace("Leaving Get Drive Geometry"),
                    Trace("GetDiskDetails: Calling GetDiskLength for disk:0"),
                    Trace("DriveName: \\\\.\\PhysicalDrive0"),
                    Trace("Get length of drive \\\\.\\PhysicalDrive0: 4194304"),
                    Trace("GetDiskDetails: Calling GetPartitionInfo for disk:0"),
                    Trace("Entering GetPartitionInfo"), Trace("Entering GetDriveLayout"),
                    Trace("Leaving GetDriveLayout"), Trace("Leaving GetPartitionInfo"),
                    Trace("Leaving GetDiskDetails")));
    EXPECT_EQ(Steps().front(), Trace("Entering GetDiskDetails"));
    EXPECT_TRUE(IsTracedAs("EnumDisk::GetDiskDetails")) << log_;
}

TEST_F(DiskDetails, DrivesGiven_AreAttachedToTheRowsWhereTheyStart) {
    Use(enum_machine::kMbrAndGpt);
    const std::vector<DriveRow> drives = {{0, 101 * kMiB, L"VOLUME2", L"D:", L"NTFS"},
                                          {1, 1 * kMiB, L"OTHER", L"E:", L"NTFS"},
                                          {-1, -1, L"SPANNED", L"S:", L"NTFS"}};
    EXPECT_TRUE(Get(&drives));
    const PartitionRow& first = disks_.at(0).partitions.at(0);
    const PartitionRow& second = disks_.at(0).partitions.at(1);
    EXPECT_EQ(first.volume + first.drive + first.file_system, L"");
    EXPECT_EQ(second.volume, L"VOLUME2");
    EXPECT_EQ(second.drive, L"D:");
    EXPECT_EQ(second.file_system, L"NTFS");
    EXPECT_EQ(disks_.at(0).partitions.at(2).volume, L"");
    EXPECT_EQ(disks_.at(1).partitions.at(0).volume, L"");
}

TEST_F(DiskDetails, GeometryOpenFails_SkipsTheDisk) {
    Use(enum_machine::kTwoMbr);
    // The third time the first disk is opened, after its layout and its length were queried.
    faults().Add({"CreateFileW", enum_machine::kDrive0, 3, false, {5, 0, 0}, {}});
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(LogLine{support::kHostError, "Opening the drive 0 failed in GetDriveGeometry 0x5"},
                    LogLine{support::kHostError, "EnumDisk::GetDiskDetails GetDriveGeometry failed"}));
}

TEST_F(DiskDetails, GeometryOpenFails_LogsNoLeavingLine) {
    Use(enum_machine::kTwoMbr);
    faults().Add({"CreateFileW", enum_machine::kDrive0, 3, false, {5, 0, 0}, {}});
    EXPECT_TRUE(Get());
    const LogLine last = Error("EnumDisk::GetDiskDetails GetDriveGeometry failed");
    EXPECT_THAT(
        StepsBetween(Trace("Entering Get Drive Geometry"), last),
        ElementsAre(Trace("Entering Get Drive Geometry"), Trace("Opening the Drive \\\\.\\PhysicalDrive0"),
                    Error("Opening the drive 0 failed in GetDriveGeometry 0x5"), last));
}

TEST_F(DiskDetails, GeometryFails_SkipsTheDisk) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kGeometry, 87, enum_machine::kDrive0);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
    EXPECT_THAT(StepsBetween(Error("GetDriveGeometry on 0 IOCTL_DISK_GET_DRIVE_GEOMETRY 0x57"),
                             Error("EnumDisk::GetDiskDetails GetDriveGeometry failed")),
                ElementsAre(Error("GetDriveGeometry on 0 IOCTL_DISK_GET_DRIVE_GEOMETRY 0x57"),
                            Trace("Leaving Get Drive Geometry"),
                            Error("EnumDisk::GetDiskDetails GetDriveGeometry failed")));
    EXPECT_EQ(log_.Count(support::kHostError), 2U) << log_;
}

TEST_F(DiskDetails, GeometryTooShort_SkipsTheDisk) {
    Use(enum_machine::kTwoMbr);
    faults().Alter(
        enum_machine::kGeometry, [](machine::Answer& answer) { answer.returned = 8; }, enum_machine::kDrive0);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
}

TEST_F(DiskDetails, LengthZero_SkipsTheDisk) {
    Use(enum_machine::kTwoMbr);
    disk(0).size = 0;
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
    EXPECT_TRUE(log_.Contains(support::kHostTrace, "GetDiskDetails disk 0 has size 0 - ignoring")) << log_;
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(DiskDetails, LengthFails_EndsTheEnumeration) {
    Use(enum_machine::kTwoMbr);
    // The second query for the length of the first disk.
    faults().Add({enum_machine::kLength, enum_machine::kDrive0, 2, false, {21, 0, 0}, {}});
    EXPECT_FALSE(Get());
    EXPECT_THAT(disks_, IsEmpty());
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(LogLine{support::kHostError, "Get length of drive \\\\.\\PhysicalDrive0 failed error=21"},
                    LogLine{support::kHostError, kFailure}));
    EXPECT_EQ(simulation().calls().Count("IWbemServices::ExecQuery"), 1U);  // placeholders are not added
    EXPECT_EQ(Steps().at(Steps().size() - 1), Error(kFailure));
    EXPECT_EQ(Steps().at(Steps().size() - 2), Trace("Leaving GetDiskDetails"));
}

TEST_F(DiskDetails, ClassicLayoutFails_EndsTheEnumeration) {
    Use(enum_machine::kTwoMbr);
    faults().Add(
        {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT", enum_machine::kDrive1, 0, false, {1, 0, 0}, {}});
    EXPECT_FALSE(Get());
    EXPECT_THAT(Numbers(), ElementsAre(0U));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(LogLine{support::kHostError,
                                    "Get drive layout of drive \\\\.\\PhysicalDrive1 failed error=1 0x1"},
                            LogLine{support::kHostError, "GetPartitionInfo: GetDriveLayout failed"},
                            LogLine{support::kHostError, kFailure}));
}

TEST_F(DiskDetails, ClassicLayoutFails_LogsNoLeavingLine) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayout, 1);
    EXPECT_FALSE(Get());
    EXPECT_THAT(StepsBetween(Trace("Entering GetPartitionInfo"), Error(kFailure)),
                ElementsAre(Trace("Entering GetPartitionInfo"), Trace("Entering GetDriveLayout"),
                            Error("Get drive layout of drive \\\\.\\PhysicalDrive0 failed error=1 0x1"),
                            Trace("Leaving GetDriveLayout"), Error("GetPartitionInfo: GetDriveLayout failed"),
                            Trace("Leaving GetDiskDetails"), Error(kFailure)));
}

TEST_F(DiskDetails, ClassicLayoutThatLies_EndsTheEnumeration) {
    Use(enum_machine::kTwoMbr);
    faults().Alter(enum_machine::kLayout,
                   [](machine::Answer& answer) { layout_bytes::SetCount(answer.bytes, false, 0xFFFFFFFF); });
    EXPECT_FALSE(Get());
    EXPECT_TRUE(log_.Contains(support::kHostError, "GetPartitionInfo: GetDriveLayout failed")) << log_;
}

TEST_F(DiskDetails, ListingFails_EndsWithTheCountOfTheDisksFoundSoFar) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayoutEx, 5, enum_machine::kDrive1);
    EXPECT_FALSE(Get());
    EXPECT_TRUE(log_.Contains(support::kHostTrace, "GetDiskDetails: No Of Disks: 1")) << log_;
    EXPECT_EQ(simulation().calls().Count(enum_machine::kGeometry), 0U);
    EXPECT_EQ(Steps().at(Steps().size() - 2), Trace("Leaving GetDiskDetails"));
    EXPECT_EQ(Steps().back(), Error(kFailure));
}

TEST_F(DiskDetails, SecondListingFails_IsAFailureWithTheDisksKept) {
    Use(enum_machine::kTwoMbr);
    faults().Add({"IWbemServices::ExecQuery", {}, 2, false, {}, {}});
    EXPECT_FALSE(Get());
    EXPECT_THAT(Numbers(), ElementsAre(0U, 1U));
    EXPECT_EQ(Steps().back(), Error(kFailure));
}

TEST_F(DiskDetails, NoDisks_FailLikeTheListing) {
    UseExample("no-disks");
    EXPECT_FALSE(Get());
    EXPECT_THAT(disks_, IsEmpty());
    EXPECT_EQ(Steps().back(), Error(kFailure));
}

TEST_F(DiskDetails, MissingDisksOnly_AreInsertedAndTraced) {
    Use(enum_machine::kMbrAndGpt);
    EXPECT_TRUE(EnumDisk().AddMissingPhysicalDisks(disks_));
    EXPECT_THAT(Sizes(), ElementsAre(500U, 500U));
    EXPECT_TRUE(IsTracedAs("EnumDisk::AddMissingPhysicalDisks")) << log_;
    EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "Entering function EnumDisk::CreateFakeDisk line "))
        << log_;
    EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "Leaving function EnumDisk::CreateFakeDisk line "))
        << log_;
}

TEST_F(DiskDetails, MissingDisksWhoseListingFails_ChangeNothing) {
    Use(enum_machine::kMbrAndGpt);
    faults().Fail("IWbemServices::ExecQuery", 0x80041003);
    EXPECT_FALSE(EnumDisk().AddMissingPhysicalDisks(disks_));
    EXPECT_THAT(disks_, IsEmpty());
}

TEST_F(DiskDetails, DiskNumberThatIsAbsurd_Fails) {
    Use(R"({"wmi": {"Win32_DiskDrive": [{"Index": 2147483647}]}})");
    EXPECT_FALSE(Get());
    EXPECT_THAT(disks_, IsEmpty());
    // The disks are listed twice: to read them, and to find the highest number.
    const std::string not_there =
        "GetDriveLayout: Opening the drive \\\\.\\PhysicalDrive2147483647 failed error=2 0x2";
    EXPECT_THAT(
        log_.Lines(support::kHostError),
        ElementsAre(not_there, not_there,
                    "EnumDisk::AddMissingPhysicalDisks disk number 2147483647 is too large", kFailure));
}

}  // namespace

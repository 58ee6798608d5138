// The whole enumeration of physical disks, and the placeholder rows for unused disk numbers.

#include "common/enumdisk/enum_disk.h"
#include "support/each_of.h"
#include "unit/common/enumdisk/enum_machine.h"
#include "unit/common/enumdisk/layout_bytes.h"

namespace {

using enum_machine::kMiB;
using support::Error;
using support::Trace;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kFailure[] = "Error occurred in EnumDisk::GetDiskDetails";

class DiskDetails : public enum_machine::EnumMachine {
protected:
    bool Get(const std::vector<DriveRow>* drives = nullptr) {
        return EnumDisk().GetDiskDetails(drives, disks_);
    }
    std::vector<std::uint32_t> Numbers() const { return support::EachOf(disks_, &DiskRow::disk_number); }
    std::vector<std::uint64_t> Sizes() const { return support::EachOf(disks_, &DiskRow::size); }

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

TEST_F(DiskDetails, UnavailableDisk_IsAPlaceholder) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayoutEx, 21, enum_machine::kDrive0);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
}

TEST_F(DiskDetails, DetailsAndLayout_AreTracedTwice) {
    Use(enum_machine::kMbrAndGpt);
    EXPECT_TRUE(Get());
    for (const std::string name : {"GetDiskDetails", "GetDriveLayout"}) {
        EXPECT_THAT(log_.all(), Contains(Trace("Entering " + name)));
        EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "Entering function EnumDisk::" + name + " line "))
            << log_;
    }
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
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("Opening the drive 0 failed in GetDriveGeometry 0x5"),
                                             Error("EnumDisk::GetDiskDetails GetDriveGeometry failed")));
    EXPECT_EQ(log_.Count(support::kHostTrace, "Entering Get Drive Geometry"), 2U) << log_;
    EXPECT_EQ(log_.Count(support::kHostTrace, "Leaving Get Drive Geometry"), 1U) << log_;
}

TEST_F(DiskDetails, GeometryFails_SkipsTheDisk) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kGeometry, 87, enum_machine::kDrive0);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Sizes(), ElementsAre(500U, 2000U * kMiB));
    EXPECT_THAT(log_.all(), Contains(Error("GetDriveGeometry on 0 IOCTL_DISK_GET_DRIVE_GEOMETRY 0x57")));
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
    EXPECT_THAT(log_.all(), Contains(Trace("GetDiskDetails disk 0 has size 0 - ignoring")));
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
        ElementsAre(Error("Get length of drive \\\\.\\PhysicalDrive0 failed error=21"), Error(kFailure)));
    EXPECT_EQ(simulation().calls().Count("IWbemServices::ExecQuery"), 1U);  // placeholders are not added
}

TEST_F(DiskDetails, ClassicLayoutFails_EndsTheEnumeration) {
    Use(enum_machine::kTwoMbr);
    faults().Add(
        {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT", enum_machine::kDrive1, 0, false, {1, 0, 0}, {}});
    EXPECT_FALSE(Get());
    EXPECT_THAT(Numbers(), ElementsAre(0U));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("Get drive layout of drive \\\\.\\PhysicalDrive1 failed error=1 0x1"),
                            Error("GetPartitionInfo: GetDriveLayout failed"), Error(kFailure)));
    EXPECT_EQ(log_.Count(support::kHostTrace, "Entering GetPartitionInfo"), 2U) << log_;
    EXPECT_EQ(log_.Count(support::kHostTrace, "Leaving GetPartitionInfo"), 1U) << log_;
}

TEST_F(DiskDetails, ClassicLayoutThatLies_EndsTheEnumeration) {
    Use(enum_machine::kTwoMbr);
    faults().Alter(enum_machine::kLayout,
                   [](machine::Answer& answer) { layout_bytes::SetCount(answer.bytes, false, 0xFFFFFFFF); });
    EXPECT_FALSE(Get());
    EXPECT_THAT(log_.all(), Contains(Error("GetPartitionInfo: GetDriveLayout failed")));
}

TEST_F(DiskDetails, ListingFails_EndsWithTheCountOfTheDisksFoundSoFar) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayoutEx, 5, enum_machine::kDrive1);
    EXPECT_FALSE(Get());
    EXPECT_THAT(log_.all(), Contains(Trace("GetDiskDetails: No Of Disks: 1")));
    EXPECT_EQ(simulation().calls().Count(enum_machine::kGeometry), 0U);
    EXPECT_EQ(log_.Told().back(), Error(kFailure));
}

TEST_F(DiskDetails, SecondListingFails_IsAFailureWithTheDisksKept) {
    Use(enum_machine::kTwoMbr);
    faults().Add({"IWbemServices::ExecQuery", {}, 2, false, {}, {}});
    EXPECT_FALSE(Get());
    EXPECT_THAT(Numbers(), ElementsAre(0U, 1U));
    EXPECT_EQ(log_.Told().back(), Error(kFailure));
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

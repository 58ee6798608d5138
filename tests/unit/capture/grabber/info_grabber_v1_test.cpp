#include "capture/grabber/info_grabber_v1.h"

#include "support/logger_capture.h"
#include "support/xml_tree.h"
#include "unit/capture/grabber/example_machine.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kDiskBytes = 320072933376;
constexpr std::uint32_t kSignature = 0x7A3C51E8;

std::wstring PathOf(int last_digit) {
    return L"\\\\?\\Volume{4e1f7b20-9a6d-11ec-b7c1-0c5415d0a10" + std::to_wstring(last_digit) + L"}\\";
}

class InfoGrabberV1Laptop : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(grabber_.ObtainInformation()) << log_; }

    machine::Session session_{ExampleMachine("bios-laptop")};
    support::LoggerCapture log_;
    boost::shared_ptr<EnvInfo> record_ = boost::make_shared<EnvInfo>();
    orvane::InfoGrabberV1 grabber_{record_};
};

TEST_F(InfoGrabberV1Laptop, GetEnvInfo_IsTheRecordThatWasGiven) {
    EXPECT_EQ(grabber_.GetEnvInfo(), record_);
    EXPECT_EQ(record_->Version, 3U);
    EXPECT_EQ(record_->DllVersion, L"9.50.6732.");
}

TEST_F(InfoGrabberV1Laptop, Collection_LeavesNothingOpenAndNoErrors) {
    EXPECT_EQ(session_.simulation().open_handles(), 0U);
    EXPECT_EQ(session_.simulation().live_objects(), 0U);
    EXPECT_EQ(log_.Count(support::kHostError), 0U) << log_;
}

TEST_F(InfoGrabberV1Laptop, Disk_IsDescribedWithTheFlatEnumeratorsRows) {
    ASSERT_EQ(record_->DiskDrives.size(), 1U);
    const DiskRow& disk = record_->DiskDrives[0];
    EXPECT_EQ(disk.disk_number, 0U);
    EXPECT_EQ(disk.size, kDiskBytes);
    EXPECT_EQ(disk.bytes_per_sector, 512U);
    EXPECT_EQ(disk.interface_type, L"IDE");
    EXPECT_EQ(disk.partition_style, 2);  // the enumerator leaves this value unchanged
    EXPECT_TRUE(IsEqualGUID(disk.disk_guid, GUID{}));
    EXPECT_THAT(FactsOf(disk),
                ElementsAre(RowFacts{L"Primary", L"Existing", MiB(1), MiB(500), 1, L"", L""},
                            RowFacts{L"Primary", L"Existing", MiB(501), MiB(150000), 2, L"C:", L"NTFS"},
                            RowFacts{L"Free space", L"Free space", MiB(150501), MiB(1), -1, L"", L""},
                            RowFacts{L"Logical", L"Existing", MiB(150502), MiB(100000), 3, L"D:", L"NTFS"},
                            RowFacts{L"Free space", L"Free space", MiB(250502), MiB(1), -1, L"", L""},
                            RowFacts{L"Logical", L"Existing", MiB(250503), MiB(54741), 4, L"F:", L"NTFS"},
                            RowFacts{L"Unallocated", L"Unallocated", MiB(305244), kDiskBytes - MiB(305244),
                                     -1, L"", L""}));
}

TEST_F(InfoGrabberV1Laptop, PartitionRows_CarryTypeFlagAndVolume) {
    const std::vector<PartitionRow>& rows = record_->DiskDrives.at(0).partitions;
    EXPECT_TRUE(rows.at(0).active);
    EXPECT_FALSE(rows.at(1).active);
    EXPECT_EQ(rows.at(0).mbr_type, 7);
    EXPECT_EQ(rows.at(3).mbr_type, 7);
    EXPECT_EQ(rows.at(0).volume, PathOf(1));
    EXPECT_EQ(rows.at(5).volume, PathOf(4));
    EXPECT_EQ(rows.at(2).volume, L"");
    EXPECT_EQ(rows.at(1).hidden, 0);
}

TEST_F(InfoGrabberV1Laptop, Volumes_AreTheFixedOnesSortedByLetter) {
    EXPECT_THAT(DevicesOf(*record_), ElementsAre(L"\\Device\\HarddiskVolume1", L"\\Device\\HarddiskVolume2",
                                                 L"\\Device\\HarddiskVolume3", L"\\Device\\HarddiskVolume4"));
}

TEST_F(InfoGrabberV1Laptop, Volume_IsDescribedWhole) {
    const ::Volume& volume = VolumeOn(*record_, L"\\Device\\HarddiskVolume3");
    EXPECT_EQ(volume.m_GUID, PathOf(3));
    EXPECT_EQ(volume.Name, PathOf(3));
    EXPECT_EQ(volume.VolumeLetter, L"D:\\");
    EXPECT_EQ(volume.Label, L"Documents");
    EXPECT_EQ(volume.Serial, 0x8E17A45DU);
    EXPECT_EQ(volume.FileSystem, L"NTFS");
    EXPECT_EQ(volume.m_dwDiskSignature, kSignature);
    EXPECT_TRUE(IsEqualGUID(volume.disk_guid, GUID{}));
    EXPECT_EQ(volume.m_offsetPartition, MiB(150502));
    EXPECT_EQ(volume.m_Size, MiB(100000));
    EXPECT_EQ(volume.m_DiskNumber, 0U);
    EXPECT_EQ(volume.m_PartitionNumber, 3);
    EXPECT_EQ(volume.BlockSize, 4096U);
    // The file system does not use the partition's last sector, and therefore loses a whole cluster.
    EXPECT_EQ(volume.m_FileSystemUsedSpace, MiB(100000) - 4096 - MiB(57120));
    EXPECT_FALSE(volume.Dynamic);
    EXPECT_FALSE(volume.SystemVolume);
    EXPECT_FALSE(volume.BootVolume);
    ASSERT_EQ(volume.extents.size(), 1U);
    const DiskExtent& extent = volume.extents[0];
    EXPECT_EQ(extent.m_GUID, PathOf(3));
    EXPECT_EQ(extent.m_dwDiskSignature, kSignature);
    EXPECT_EQ(extent.m_offsetPartition, MiB(150502));
    EXPECT_EQ(extent.m_Size, MiB(100000));
    EXPECT_EQ(extent.m_FileSystemUsedSpace, 0U);
    EXPECT_EQ(extent.m_DiskNumber, 0U);
    EXPECT_EQ(extent.m_PartitionNumber, 3);
}

TEST_F(InfoGrabberV1Laptop, BootSection_NamesBothVolumesByTheirPaths) {
    EXPECT_EQ(record_->BootConfig.m_guidBootVolume, PathOf(1));
    EXPECT_EQ(record_->BootConfig.m_guidSystemVolume, PathOf(2));
    EXPECT_EQ(record_->BootConfig.m_strOS, L"Microsoft Windows 10 Pro");
    EXPECT_EQ(record_->BootConfig.numeric_version_string, L"10.0.19045");
    EXPECT_EQ(record_->BootConfig.product_type, 1U);
    EXPECT_EQ(record_->BootConfig.m_OSArchitecture, 64U);
    EXPECT_EQ(record_->BootConfig.m_strBootOptions, std::wstring(L" NOEXECUTE=OPTIN\0", 17));
    EXPECT_TRUE(VolumeOn(*record_, L"\\Device\\HarddiskVolume1").BootVolume);
    EXPECT_TRUE(VolumeOn(*record_, L"\\Device\\HarddiskVolume2").SystemVolume);
}

TEST_F(InfoGrabberV1Laptop, Document_IsTheFlatLayoutOfTheRecord) {
    const XmlTree root = XmlTree::Of(DocumentOf(grabber_));
    const XmlTree& document = root.Child("BMREnvInfo");
    EXPECT_THAT(document.Names(), ElementsAre("Version", "DllVersion", "Processor", "ComputerSystem",
                                              "BootConfiguration", "OS", "DiskDrives", "VolumeTable",
                                              "DriveLetterTable", "BootConfig", "BootIniContents"));
    EXPECT_EQ(document.Child("Version").text, "3");
    EXPECT_EQ(document.Child("OS").Child("CSName").text, "LT-ANNA");
    EXPECT_EQ(document.Child("DiskDrives").Child("size_idx").text, "1");
    EXPECT_EQ(document.Child("DiskDrives").Child("x0").Child("size_idy").text, "7");
    EXPECT_EQ(document.Child("VolumeTable").Child("TotalVolumes").text, "4");
    EXPECT_EQ(document.Child("DriveLetterTable").Child("TotalDrives").text, "4");
    EXPECT_EQ(
        document.Child("DriveLetterTable").Child("Drive0"),
        Branch("Drive0", {Leaf("m_strDrive", ""),
                          Leaf("m_guidVolume", "\\\\?\\Volume{4e1f7b20-9a6d-11ec-b7c1-0c5415d0a101}\\")}));
    EXPECT_EQ(document.Child("BootConfig").Child("m_strBootOptions").text, " NOEXECUTE=OPTIN");
    EXPECT_EQ(document.Child("BootIniContents").text, "");
}

TEST_F(InfoGrabberV1Laptop, CanBackup_IsTrueOfAnythingWithoutALine) {
    log_.Clear();
    EXPECT_TRUE(grabber_.CanBackup({L"\\\\?\\Volume{99999999-0000-0000-0000-000000000000}\\"}, {}, false));
    EXPECT_TRUE(grabber_.CanBackup({}, {{7, 0}}, true));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(InfoGrabberV1Laptop, DumpVolumeInfo_DoesNothing) {
    log_.Clear();
    grabber_.DumpVolumeInfo();
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST(InfoGrabberV1, ObtainInformation_FailsWhereTheCollectionFails) {
    machine::Session session(ExampleMachine("bios-laptop"));
    const support::LoggerCapture log;
    session.simulation().faults().Fail("FindFirstVolumeW", 5);
    orvane::InfoGrabberV1 grabber(boost::make_shared<EnvInfo>());
    EXPECT_FALSE(grabber.ObtainInformation());
    EXPECT_TRUE(log.Contains(support::kHostError, "InitEnvInfo Failed")) << log;
}

// The partition query fails for a dynamic volume, so the volume is left out.
TEST(InfoGrabberV1, DynamicDisks_KeepTheirRowsAndLoseTheirVolumes) {
    const machine::Session session(ExampleMachine("spanned-dynamic"));
    const support::LoggerCapture log;
    orvane::InfoGrabberV1 grabber(boost::make_shared<EnvInfo>());
    ASSERT_TRUE(grabber.ObtainInformation()) << log;
    const EnvInfo& record = *grabber.GetEnvInfo();
    EXPECT_THAT(DevicesOf(record), ElementsAre(L"\\Device\\HarddiskVolume1", L"\\Device\\HarddiskVolume2"));
    EXPECT_EQ(record.DiskDrives.size(), 3U);
    EXPECT_EQ(record.DiskDrives.at(1).partitions.at(0).mbr_type, 0x42);
    EXPECT_TRUE(log.Contains(support::kHostWarning,
                             "getFixedVolumes skipping volume "
                             "\\\\?\\Volume{d7a0c413-6e2f-11e9-9a85-00155d01c203}\\ S: due to errors"))
        << log;
}

TEST(InfoGrabberV1, MachineWithGptDisksAlone_HasNoSystemVolume) {
    const machine::Session session(ExampleMachine("uefi-workstation"));
    const support::LoggerCapture log;
    orvane::InfoGrabberV1 grabber(boost::make_shared<EnvInfo>());
    EXPECT_FALSE(grabber.ObtainInformation());
    EXPECT_TRUE(
        log.ContainsPart(support::kHostError, "Failed to find System volume '\\Device\\HarddiskVolume3'."))
        << log;
}

TEST(InfoGrabberV1, NewGrabber_HasCollectedNothing) {
    const machine::Session session(ExampleMachine("bios-laptop"));
    orvane::InfoGrabberV1 grabber(boost::make_shared<EnvInfo>());
    EXPECT_EQ(grabber.GetEnvInfo()->Version, 0U);
    EXPECT_TRUE(grabber.GetEnvInfo()->VolumeTable.empty());
}

}  // namespace

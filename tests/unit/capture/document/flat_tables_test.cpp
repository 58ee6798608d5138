#include "capture/document/flat_tables.h"

#include "support/written_document.h"

#include <gtest/gtest.h>

namespace {

const GUID kGuid{0xebd0a0a2, 0xb9e5, 0x4433, {0x87, 0xc0, 0x68, 0xb6, 0xb7, 0x26, 0x99, 0xc7}};
const GUID kOtherGuid{0x12345678, 0x9abc, 0xdef0, {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08}};
constexpr char kGuidText[] = "{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}";
constexpr char kOtherGuidText[] = "{12345678-9ABC-DEF0-0102-030405060708}";
constexpr char kNoGuidText[] = "{00000000-0000-0000-0000-000000000000}";

template <class Write, class Rows>
XmlTree Table(Write write, const Rows& rows) {
    const XmlTree root = Written([&](CMSXmlNode& node) { write(node, rows); });
    return root.children.at(0);
}

PartitionRow FilledPartition() {
    PartitionRow row;
    row.length = 104857600;
    row.offset = 1048576;
    row.hidden = -2;
    row.active = true;
    row.kind = L"Primary";
    row.operation = L"Existing";
    row.drive = L"C:\\";
    row.file_system = L"NTFS";
    row.volume = L"\\\\?\\Volume{1}\\";
    row.partition_number = 3;
    row.mbr_type = 0xEE;
    row.partition_style = 1;
    row.gpt_type = kGuid;
    row.gpt_id = kOtherGuid;
    return row;
}

const XmlTree kFilledPartition = Branch("y0", {
                                                  Leaf("size", "104857600"),
                                                  Leaf("mbr_partition_type", "238"),
                                                  Leaf("gpt_partition_type", kGuidText),
                                                  Leaf("partition_style", "1"),
                                                  Leaf("partition_guid", kOtherGuidText),
                                                  Leaf("start", "1048576"),
                                                  Leaf("hidden", "-2"),
                                                  Leaf("primary", "1"),
                                                  Leaf("partition", "3"),
                                                  Leaf("drive", "C:\\"),
                                                  Leaf("fs", "NTFS"),
                                                  Leaf("parttype", "Primary"),
                                                  Leaf("volume", "\\\\?\\Volume{1}\\"),
                                                  Leaf("operation", "Existing"),
                                              });

TEST(WriteDiskDrives, NoDisks_WriteTheCountAlone) {
    EXPECT_EQ(Table(WriteDiskDrives, std::vector<DiskRow>{}), Branch("DiskDrives", {Leaf("size_idx", "0")}));
}

TEST(WriteDiskDrives, FilledDisk_WritesEveryFieldInOrder) {
    DiskRow disk;
    disk.size = 9000000000000000000U;
    disk.disk_number = 10;
    disk.bytes_per_sector = 4096;
    disk.partition_style = 1;
    disk.interface_type = L"SCSI";
    disk.disk_guid = kGuid;
    disk.partitions = {FilledPartition()};
    EXPECT_EQ(Table(WriteDiskDrives, std::vector{disk}),
              Branch("DiskDrives", {
                                       Leaf("size_idx", "1"),
                                       Branch("x0",
                                              {
                                                  Leaf("index", "10"),
                                                  Leaf("partition_style", "1"),
                                                  Leaf("disk_guid", kGuidText),
                                                  Leaf("size", "9000000000000000000"),
                                                  Leaf("disk_bytes_per_sector", "4096"),
                                                  Leaf("interface", "SCSI"),
                                                  Leaf("size_idy", "1"),
                                                  kFilledPartition,
                                              }),
                                   }));
}

TEST(WriteDiskDrives, UnsignedMembersOfSignedElements_AreWrittenSigned) {
    DiskRow disk;
    disk.size = 0xFFFFFFFFFFFFFFFFU;
    disk.disk_number = 0xFFFFFFFFU;
    const XmlTree table = Table(WriteDiskDrives, std::vector{disk});
    EXPECT_EQ(table.Child("x0").Child("index").text, "-1");
    EXPECT_EQ(table.Child("x0").Child("size").text, "-1");
}

TEST(WriteDiskDrives, DisksAndPartitions_AreNumberedFromZeroEach) {
    std::vector<DiskRow> disks(2);
    disks[0].partitions.resize(2);
    disks[1].partitions.resize(1);
    const XmlTree table = Table(WriteDiskDrives, disks);
    EXPECT_EQ(table.Names(), (std::vector<std::string>{"size_idx", "x0", "x1"}));
    EXPECT_TRUE(table.Child("x0").Has("y0"));
    EXPECT_TRUE(table.Child("x0").Has("y1"));
    EXPECT_EQ(table.Child("x0").Child("size_idy").text, "2");
    EXPECT_EQ(table.Child("x1").Child("size_idy").text, "1");
    EXPECT_TRUE(table.Child("x1").Has("y0"));
    EXPECT_FALSE(table.Child("x1").Has("y1"));
}

TEST(WriteDiskDrives, PartitionThatIsNotPrimary_IsWrittenZero) {
    DiskRow disk;
    disk.partitions.resize(1);
    const XmlTree table = Table(WriteDiskDrives, std::vector{disk});
    const XmlTree& partition = table.Child("x0").Child("y0");
    EXPECT_EQ(partition.Names(), kFilledPartition.Names());
    EXPECT_EQ(partition.Child("primary").text, "0");
    EXPECT_EQ(partition.Child("gpt_partition_type").text, kNoGuidText);
    EXPECT_EQ(partition.Child("drive").text, "");
}

DiskExtent Extent(std::uint64_t offset) {
    DiskExtent extent;
    extent.m_dwDiskSignature = 0xFFFFFFFFU;
    extent.disk_guid = kGuid;
    extent.m_GUID = L"{E}";
    extent.m_offsetPartition = offset;
    extent.m_Size = 18446744073709551615U;
    extent.m_DiskNumber = 2;
    extent.m_PartitionNumber = -1;
    extent.m_FileSystemUsedSpace = 5;
    return extent;
}

XmlTree ExtentElement(const char* name, const char* offset) {
    return Branch(name, {
                            Leaf("m_dwDiskSignature", "4294967295"),
                            Leaf("disk_guid", kGuidText),
                            Leaf("m_GUID", "{E}"),
                            Leaf("m_offsetPartition", offset),
                            Leaf("m_Size", "18446744073709551615"),
                            Leaf("m_DiskNumber", "2"),
                            Leaf("m_PartitionNumber", "-1"),
                        });
}

::Volume FilledVolume() {
    ::Volume volume;
    static_cast<DiskExtent&>(volume) = Extent(1048576);
    volume.m_FileSystemUsedSpace = 123456789012;
    volume.Name = L"\\\\?\\Volume{2}\\";
    volume.DeviceName = L"\\Device\\HarddiskVolume2";
    volume.VolumeLetter = L"D:\\";
    volume.Label = L"Data <1> & more";
    volume.Serial = 4000000000;
    volume.FileSystem = L"NTFS";
    volume.Flags = 65482495;
    volume.SystemVolume = false;
    volume.BootVolume = true;
    volume.Dynamic = true;
    volume.BlockSize = 4096;
    return volume;
}

TEST(WriteVolumeTable, NoVolumes_WriteTheCountAlone) {
    EXPECT_EQ(Table(WriteVolumeTable, std::vector<::Volume>{}),
              Branch("VolumeTable", {Leaf("TotalVolumes", "0")}));
}

TEST(WriteVolumeTable, FilledVolume_WritesEveryFieldInOrder) {
    ::Volume volume = FilledVolume();
    volume.extents = {Extent(0), Extent(512), Extent(1024)};
    EXPECT_EQ(Table(WriteVolumeTable, std::vector{volume}),
              Branch("VolumeTable", {
                                        Leaf("TotalVolumes", "1"),
                                        Branch("volume0",
                                               {
                                                   Leaf("m_dwDiskSignature", "4294967295"),
                                                   Leaf("disk_guid", kGuidText),
                                                   Leaf("m_GUID", "{E}"),
                                                   Leaf("m_offsetPartition", "1048576"),
                                                   Leaf("m_Size", "18446744073709551615"),
                                                   Leaf("m_DiskNumber", "2"),
                                                   Leaf("m_PartitionNumber", "-1"),
                                                   Leaf("m_FileSystemUsedSpace", "123456789012"),
                                                   Leaf("Name", "\\\\?\\Volume{2}\\"),
                                                   Leaf("DeviceName", "\\Device\\HarddiskVolume2"),
                                                   Leaf("VolumeLetter", "D:\\"),
                                                   Leaf("Label", "Data <1> & more"),
                                                   Leaf("Serial", "4000000000"),
                                                   Leaf("FileSystem", "NTFS"),
                                                   Leaf("Flags", "65482495"),
                                                   Leaf("SystemVolume", "0"),
                                                   Leaf("Dynamic", "1"),
                                                   Leaf("BlockSize", "4096"),
                                                   ExtentElement("extent0", "0"),
                                                   ExtentElement("extent1", "512"),
                                                   ExtentElement("extent2", "1024"),
                                               }),
                                    }));
}

TEST(WriteVolumeTable, Volumes_AreNumberedFromZero) {
    const XmlTree table = Table(WriteVolumeTable, std::vector<::Volume>(3));
    EXPECT_EQ(table.Names(), (std::vector<std::string>{"TotalVolumes", "volume0", "volume1", "volume2"}));
}

TEST(WriteDriveLetterTable, NoDrives_WriteTheCountAlone) {
    EXPECT_EQ(Table(WriteDriveLetterTable, std::vector<DriveLetterEntry>{}),
              Branch("DriveLetterTable", {Leaf("TotalDrives", "0")}));
}

TEST(WriteDriveLetterTable, Drives_WriteLetterBeforeVolume) {
    const std::vector<DriveLetterEntry> drives = {{L"{A}", L"C:\\"}, {L"{B}", L""}};
    EXPECT_EQ(Table(WriteDriveLetterTable, drives),
              Branch("DriveLetterTable",
                     {
                         Leaf("TotalDrives", "2"),
                         Branch("Drive0", {Leaf("m_strDrive", "C:\\"), Leaf("m_guidVolume", "{A}")}),
                         Branch("Drive1", {Leaf("m_strDrive", ""), Leaf("m_guidVolume", "{B}")}),
                     }));
}

TEST(WriteBootConfig, FilledRecord_WritesEveryFieldInOrder) {
    BootConfig boot;
    boot.m_guidSystemVolume = L"{S}";
    boot.m_guidBootVolume = L"{B}";
    boot.m_strBootFolder = L"C:\\Windows";
    boot.m_strBootOptions = L" NOEXECUTE=OPTIN";
    boot.m_strOS = L"The caption";
    boot.m_OSArchitecture = 64;
    boot.numeric_version_string = L"10.0.22631";
    boot.product_type = 3;
    EXPECT_EQ(Table(WriteBootConfig, boot),
              Branch("BootConfig", {
                                       Leaf("m_guidBootVolume", "{B}"),
                                       Leaf("m_guidSystemVolume", "{S}"),
                                       Leaf("m_strBootFolder", "C:\\Windows"),
                                       Leaf("m_strBootOptions", " NOEXECUTE=OPTIN"),
                                       Leaf("m_strOS", "The caption"),
                                       Leaf("m_OSArchitecture", "64"),
                                       Leaf("numeric_version_string", "10.0.22631"),
                                       Leaf("product_type", "3"),
                                   }));
}

}  // namespace

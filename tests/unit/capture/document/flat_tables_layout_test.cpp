// The whole document of a hand-filled record, element by element.

#include "capture/document/environment_document.h"
#include "support/written_document.h"

#include <gtest/gtest.h>

namespace {

const GUID kDiskGuid{0x6f1f4a52, 0x9c0d, 0x4e1b, {0x8a, 0x37, 0x52, 0xd1, 0xb0, 0xc4, 0xe9, 0xa1}};
constexpr char kDiskGuidText[] = "{6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1}";
constexpr char kNoGuidText[] = "{00000000-0000-0000-0000-000000000000}";

void FillSections(EnvInfo& record) {
    record.Version = 5;
    record.DllVersion = L"9.50.6732.";
    record.Processor = {9, 3600, 107, L"GenuineOrrin", 4200, 0, 3, -1};
    record.ComputerSystem = {-300,
                             L"AT",
                             L"WORKGROUP",
                             L"Brennholt",
                             L"Desk 400",
                             2,
                             {L"One", L"Two <second>"},
                             L"x64-based PC",
                             L"34190458880",
                             L"WS\\erika"};
    record.BootConfiguration = {L"C:\\WINDOWS",       L"C:\\Path",    L"\\Device\\Part", L"E:",
                                L"BootConfiguration", L"C:\\Scratch", 4294967295U,       L"C:\\Temp"};
    OSInfo& os = record.OS;
    os.BootDevice = L"\\Device\\HarddiskVolume1";
    os.CountryCode = L"49";
    os.CSDVersion = L"Service Pack 1";
    os.CSName = L"WS-2207";
    os.CurrentTimeZone = 60;
    os.Description = L"Anna's & Otto's";
    os.Locale = L"0409";
    os.Manufacturer = L"The maker";
    os.Organization = L"The owner";
    os.OSLanguage = 1033;
    os.OSType = 18;
    os.ProductType = 77;  // not written in this section
    os.OSArchitecture = 64;
    os.SerialNumber = L"00330";
    os.SystemDevice = L"\\Device\\HarddiskVolume3";
    os.SystemDirectory = L"C:\\WINDOWS\\system32";
    os.SystemDrive = L"C:";
    os.Version = L"10.0.22631";
    os.Name = L"The caption";
    os.WindowsDirectory = L"C:\\WINDOWS";
}

void FillTables(EnvInfo& record) {
    DiskRow disk;
    disk.disk_number = 2;
    disk.partition_style = 1;
    disk.disk_guid = kDiskGuid;
    disk.size = 512110190592;
    disk.bytes_per_sector = 512;
    disk.interface_type = L"SCSI";
    PartitionRow partition;
    partition.length = 104857600;
    partition.length_copy = 999;  // not written
    partition.offset = 1048576;
    partition.active = true;
    partition.kind = L"Primary";
    partition.operation = L"Existing";
    partition.partition_number = 1;
    partition.partition_style = 1;
    disk.partitions = {partition};
    record.DiskDrives = {disk};

    ::Volume volume;
    volume.m_GUID = L"{V}";
    volume.m_dwDiskSignature = 2050773480;
    volume.m_DiskNumber = 2;
    volume.BootVolume = true;  // not written
    volume.SystemVolume = true;
    DiskExtent extent;
    extent.m_FileSystemUsedSpace = 5;  // not written for an extent
    volume.extents = {extent};
    record.VolumeTable = {volume};
    record.DriveLetterTable = {{L"{V}", L"C:\\"}};
    record.BootConfig = {L"{S}", L"{B}", L"C:\\WINDOWS", L" DEBUG", L"The caption", 64, L"10.0.22631", 1};
    record.BootIniContents = L"[boot loader]";
}

const XmlTree kProcessor =
    Branch("Processor", {Leaf("Architecture", "9"), Leaf("CurrentClockSpeed", "3600"), Leaf("Family", "107"),
                         Leaf("Manufacturer", "GenuineOrrin"), Leaf("MaxClockSpeed", "4200"),
                         Leaf("ProcessorId", "0"), Leaf("ProcessorType", "3"), Leaf("UniqueId", "-1")});

const XmlTree kComputerSystem =
    Branch("ComputerSystem",
           {Leaf("CurrentTimeZone", "-300"), Leaf("Description", "AT"), Leaf("Domain", "WORKGROUP"),
            Leaf("Manufacturer", "Brennholt"), Leaf("Model", "Desk 400"), Leaf("NumberOfProcessors", "2"),
            Branch("SystemStartupOptions",
                   {Leaf("size", "2"), Leaf("child0", "One"), Leaf("child1", "Two <second>")}),
            Leaf("SystemType", "x64-based PC"), Leaf("TotalPhysicalMemory", "34190458880"),
            Leaf("UserName", "WS\\erika")});

const XmlTree kBootConfiguration =
    Branch("BootConfiguration", {Leaf("BootDirectory", "C:\\WINDOWS"), Leaf("ConfigurationPath", "C:\\Path"),
                                 Leaf("Description", "\\Device\\Part"), Leaf("LastDrive", "E:"),
                                 Leaf("Name", "BootConfiguration"), Leaf("ScratchDirectory", "C:\\Scratch"),
                                 Leaf("SettingID", "4294967295"), Leaf("TempDirectory", "C:\\Temp")});

const XmlTree kOS = Branch(
    "OS",
    {Leaf("BootDevice", "\\Device\\HarddiskVolume1"), Leaf("CountryCode", "49"),
     Leaf("CSDVersion", "Service Pack 1"), Leaf("CSName", "WS-2207"), Leaf("CurrentTimeZone", "60"),
     Leaf("Description", "Anna's & Otto's"), Leaf("Locale", "0409"), Leaf("Manufacturer", "The maker"),
     Leaf("Organization", "The owner"), Leaf("OSLanguage", "1033"), Leaf("OSType", "18"),
     Leaf("OSArchitecture", "64"), Leaf("SerialNumber", "00330"),
     Leaf("SystemDevice", "\\Device\\HarddiskVolume3"), Leaf("SystemDirectory", "C:\\WINDOWS\\system32"),
     Leaf("SystemDrive", "C:"), Leaf("Version", "10.0.22631"), Leaf("Name", "The caption"),
     Leaf("WindowsDirectory", "C:\\WINDOWS")});

const XmlTree kDiskDrives =
    Branch("DiskDrives",
           {Leaf("size_idx", "1"),
            Branch("x0", {Leaf("index", "2"), Leaf("partition_style", "1"), Leaf("disk_guid", kDiskGuidText),
                          Leaf("size", "512110190592"), Leaf("disk_bytes_per_sector", "512"),
                          Leaf("interface", "SCSI"), Leaf("size_idy", "1"),
                          Branch("y0", {Leaf("size", "104857600"), Leaf("mbr_partition_type", "0"),
                                        Leaf("gpt_partition_type", kNoGuidText), Leaf("partition_style", "1"),
                                        Leaf("partition_guid", kNoGuidText), Leaf("start", "1048576"),
                                        Leaf("hidden", "0"), Leaf("primary", "1"), Leaf("partition", "1"),
                                        Leaf("drive", ""), Leaf("fs", ""), Leaf("parttype", "Primary"),
                                        Leaf("volume", ""), Leaf("operation", "Existing")})})});

const XmlTree kVolumeTable = Branch(
    "VolumeTable",
    {Leaf("TotalVolumes", "1"),
     Branch("volume0",
            {Leaf("m_dwDiskSignature", "2050773480"), Leaf("disk_guid", kNoGuidText), Leaf("m_GUID", "{V}"),
             Leaf("m_offsetPartition", "0"), Leaf("m_Size", "0"), Leaf("m_DiskNumber", "2"),
             Leaf("m_PartitionNumber", "0"), Leaf("m_FileSystemUsedSpace", "0"), Leaf("Name", ""),
             Leaf("DeviceName", ""), Leaf("VolumeLetter", ""), Leaf("Label", ""), Leaf("Serial", "0"),
             Leaf("FileSystem", ""), Leaf("Flags", "0"), Leaf("SystemVolume", "1"), Leaf("Dynamic", "0"),
             Leaf("BlockSize", "0"),
             Branch("extent0", {Leaf("m_dwDiskSignature", "0"), Leaf("disk_guid", kNoGuidText),
                                Leaf("m_GUID", ""), Leaf("m_offsetPartition", "0"), Leaf("m_Size", "0"),
                                Leaf("m_DiskNumber", "0"), Leaf("m_PartitionNumber", "0")})})});

const XmlTree kBootConfig =
    Branch("BootConfig", {Leaf("m_guidBootVolume", "{B}"), Leaf("m_guidSystemVolume", "{S}"),
                          Leaf("m_strBootFolder", "C:\\WINDOWS"), Leaf("m_strBootOptions", " DEBUG"),
                          Leaf("m_strOS", "The caption"), Leaf("m_OSArchitecture", "64"),
                          Leaf("numeric_version_string", "10.0.22631"), Leaf("product_type", "1")});

XmlTree Document(const EnvInfo& record) {
    return Written([&](CMSXmlNode& root) { WriteEnvironment(root, record); });
}

TEST(FlatLayout, FilledRecord_IsWrittenElementByElement) {
    EnvInfo record;
    FillSections(record);
    FillTables(record);
    EXPECT_EQ(
        Document(record),
        Branch("root", {Branch("BMREnvInfo",
                               {Leaf("Version", "5"), Leaf("DllVersion", "9.50.6732."), kProcessor,
                                kComputerSystem, kBootConfiguration, kOS, kDiskDrives, kVolumeTable,
                                Branch("DriveLetterTable", {Leaf("TotalDrives", "1"),
                                                            Branch("Drive0", {Leaf("m_strDrive", "C:\\"),
                                                                              Leaf("m_guidVolume", "{V}")})}),
                                kBootConfig, Leaf("BootIniContents", "[boot loader]")})}));
}

TEST(FlatLayout, EmptyRecord_WritesEveryElementEmptyOrZero) {
    const XmlTree root = Document(EnvInfo{});
    const XmlTree& document = root.Child("BMREnvInfo");
    for (const XmlTree& expected : {kProcessor, kBootConfiguration, kOS, kBootConfig}) {
        const XmlTree& section = document.Child(expected.name);
        EXPECT_EQ(section.Names(), expected.Names());
        for (const XmlTree& field : section.children) {
            EXPECT_TRUE(field.text.empty() || field.text == "0") << field.name;
        }
    }
    EXPECT_EQ(document.Child("ComputerSystem").Child("SystemStartupOptions"),
              Branch("SystemStartupOptions", {Leaf("size", "0")}));
    EXPECT_EQ(document.Child("VolumeTable"), Branch("VolumeTable", {Leaf("TotalVolumes", "0")}));
    EXPECT_EQ(document.Child("DiskDrives"), Branch("DiskDrives", {Leaf("size_idx", "0")}));
}

TEST(FlatLayout, TerminatorInTheBootOptions_StaysOutOfTheDocument) {
    EnvInfo record;
    record.BootConfig.m_strBootOptions.assign(L" NOEXECUTE=OPTIN\0", 17);
    const XmlTree root = Document(record);
    EXPECT_EQ(root.Child("BMREnvInfo").Child("BootConfig").Child("m_strBootOptions").text,
              " NOEXECUTE=OPTIN");
    EXPECT_EQ(Lines(root).find('\0'), std::string::npos);
}

}  // namespace

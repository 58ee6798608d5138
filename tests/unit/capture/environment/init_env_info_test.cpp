#include "capture/environment/init_env_info.h"

#include "machine/description/wmi_defaults.h"
#include "machine/session/session.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using support::Error;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kMiB = 1ULL << 20;
const support::LogLine kFailed = Error("InitEnvInfo Failed");

constexpr char kTwoPartitions[] = R"({
    "disks": [{"index": 0, "size": "64 GiB", "style": "mbr", "signature": "0x11223344", "partitions": [
        {"offset": "1 MiB", "size": "500 MiB", "type": "ntfs", "active": true},
        {"offset": "501 MiB", "size": "30 GiB", "type": "ntfs"},
        {"offset": "40 GiB", "size": "10 GiB", "type": "ntfs"}]}],
    "volumes": [
        {"device": "\\Device\\HarddiskVolume3", "guid": "{33333333-0000-0000-0000-000000000000}",
         "partition": {"disk": 0, "number": 3}, "mountPoints": ["D:\\"]},
        {"device": "\\Device\\HarddiskVolume2", "guid": "{22222222-0000-0000-0000-000000000000}",
         "partition": {"disk": 0, "number": 2}, "mountPoints": ["C:\\"]},
        {"device": "\\Device\\HarddiskVolume1", "guid": "{11111111-0000-0000-0000-000000000000}",
         "partition": {"disk": 0, "number": 1}}
    ]
})";

class InitEnvInfoTest : public testing::Test {
protected:
    machine::Simulation& simulation() { return session_.simulation(); }
    machine::Description& description() { return simulation().description(); }

    std::vector<std::string> DtsLines() const {
        std::vector<std::string> lines;
        for (const std::string& line : log_.Lines(support::kHostTrace)) {
            if (line.starts_with("DTS 19963")) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    support::LoggerCapture log_;
    machine::Session session_{machine::ParseDescription(kTwoPartitions, "legacy machine")};
    EnvInfo record_;
};

// --- Steps that fail.

struct Section {
    const wchar_t* class_name;
    const char* line;
};

void PrintTo(const Section& section, std::ostream* out) {
    *out << section.line;
}

class InitEnvInfoSection : public InitEnvInfoTest, public testing::WithParamInterface<Section> {};

TEST_P(InitEnvInfoSection, ThatCannotBeRead_FailsAfterAllFourWereTried) {
    description().wmi[machine::WmiClassKey(GetParam().class_name)].instances.clear();
    EXPECT_FALSE(InitEnvInfo(record_));
    EXPECT_THAT(log_.Lines(support::kHostError), ElementsAre(GetParam().line, kFailed.text));
    EXPECT_THAT(simulation().calls().ObjectsOf("IWbemServices::ExecQuery"),
                ElementsAre(L"Win32_Processor", L"Win32_BootConfiguration", L"Win32_ComputerSystem",
                            L"Win32_OperatingSystem"));
    EXPECT_EQ(simulation().calls().Count("FindFirstVolumeW"), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Sections, InitEnvInfoSection,
    testing::Values(Section{L"Win32_Processor", "GetProcessorInfo FindFirstObject failed"},
                    Section{L"Win32_BootConfiguration", "GetBootConfiguration FindFirstObject failed"},
                    Section{L"Win32_ComputerSystem", "GetComputerSystem FindFirstObject failed"},
                    Section{L"Win32_OperatingSystem", "GetOSInfo FindFirstObject failed"}));

TEST_F(InitEnvInfoTest, VolumesThatCannotBeListed_Fail) {
    simulation().faults().Fail("FindFirstVolumeW", 5);
    EXPECT_FALSE(InitEnvInfo(record_));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("getFixedVolumes: FindFirstVolume failed error=0x5 5"), kFailed));
}

TEST_F(InitEnvInfoTest, DrivesThatCannotBeListed_FailWithTheirOwnLineAlone) {
    machine::FaultRule second;
    second.name = "FindFirstVolumeW";
    second.ordinal = 2;
    second.codes.win32 = 5;
    simulation().faults().Add(second);
    EXPECT_FALSE(InitEnvInfo(record_));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("EnumDisk::GetDrives on FindFirstVolumeW failed with error code 5\n"));
    EXPECT_EQ(record_.Version, 3U);
    EXPECT_THAT(record_.DiskDrives, IsEmpty());
}

// --- Correction of partition numbers.

TEST_F(InitEnvInfoTest, NumberThatDiffers_IsCorrectedInTheVolumeAlone) {
    // Without the first volume, the second partition is the first one with a fixed volume.
    description().volumes.pop_back();
    description().volumes[1].partition->active = true;
    machine::WmiValue device;
    device.type = VT_BSTR;
    device.text = L"\\Device\\HarddiskVolume2";
    machine::SetProperty(description().wmi[machine::WmiClassKey(L"Win32_OperatingSystem")].instances.at(0),
                         {L"BootDevice", device});
    ASSERT_TRUE(InitEnvInfo(record_)) << log_;
    ASSERT_EQ(record_.VolumeTable.size(), 2U);
    EXPECT_EQ(record_.VolumeTable[0].m_PartitionNumber, 2);
    EXPECT_EQ(record_.VolumeTable[0].extents.at(0).m_PartitionNumber, 1);
    EXPECT_EQ(record_.VolumeTable[1].m_PartitionNumber, 3);
    EXPECT_EQ(record_.VolumeTable[1].extents.at(0).m_PartitionNumber, 2);
    EXPECT_THAT(DtsLines(),
                ElementsAre("DTS 19963 InitEnvInfo changing partition number from 1 to 2 for volume C:\\ "
                            "\\\\?\\Volume{22222222-0000-0000-0000-000000000000}\\",
                            "DTS 19963 InitEnvInfo changing partition number from 2 to 3 for volume D:\\ "
                            "\\\\?\\Volume{33333333-0000-0000-0000-000000000000}\\"));
}

TEST_F(InitEnvInfoTest, BasicVolumeWhereNoPartitionStarts_FailsWithoutAFurtherLine) {
    // In the sorted table the volume without a letter comes before C:.
    (*description().volumes[1].extents)[0].offset += kMiB;
    EXPECT_FALSE(InitEnvInfo(record_));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("InitEnvInfo failed to fix volume C:\\ partition number"));
    EXPECT_FALSE(log_.ContainsPart(support::kHostTrace, "for volume D:\\")) << log_;
    EXPECT_EQ(record_.DiskDrives.size(), 1U);
}

TEST_F(InitEnvInfoTest, VolumeOnADiskWithoutPartitions_FailsOnTheWholeDiskRow) {
    // The placeholder row of a disk that is not described starts at 0 and is not a partition.
    machine::Extent& extent = (*description().volumes[0].extents)[0];
    extent.disk = 1;
    extent.offset = 0;
    machine::Disk disk = description().disks[0];
    disk.index = 1;
    disk.device = L"\\Device\\Harddisk1\\DR1";
    disk.style = PARTITION_STYLE_GPT;
    disk.partitions.clear();
    description().disks.push_back(disk);
    machine::WmiInstance drive = description().wmi[machine::WmiClassKey(L"Win32_DiskDrive")].instances.at(0);
    machine::WmiValue index;
    index.type = VT_I4;
    index.number = 1;
    machine::SetProperty(drive, {L"Index", index});
    description().wmi[machine::WmiClassKey(L"Win32_DiskDrive")].instances.push_back(drive);
    EXPECT_FALSE(InitEnvInfo(record_));
    EXPECT_THAT(log_.all(), Contains(Error("InitEnvInfo failed to fix volume D:\\ partition number")));
    ASSERT_EQ(record_.DiskDrives.size(), 2U);
    EXPECT_EQ(record_.DiskDrives[1].size, 500U);
}

TEST_F(InitEnvInfoTest, DynamicVolume_KeepsItsNumberAndFailsNothing) {
    description().disks[0].partitions[2].mbr_type = 0x42;  // makes the disk dynamic
    (*description().volumes[0].extents)[0].offset += kMiB;
    (*description().volumes[1].extents)[0].offset += kMiB;
    description().volumes[1].partition->number = 9;
    EXPECT_TRUE(InitEnvInfo(record_)) << log_;
    for (const ::Volume& volume : record_.VolumeTable) {
        EXPECT_TRUE(volume.Dynamic);
    }
    EXPECT_EQ(record_.VolumeTable[1].m_PartitionNumber, 2);
    EXPECT_THAT(DtsLines(), IsEmpty());
    EXPECT_FALSE(log_.ContainsPart(support::kHostTrace, "Entering function GetPartitionNumber")) << log_;
}

}  // namespace

#include "common/disk/partition_manager_gpt.h"
#include "common/disk/partition_manager_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/disk/expected_lines.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace bmr_common {
namespace {

using expected::Error;
using expected::Info;
using simulated_disks::Machine;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// An MBR disk with one partition and three unused slots, and a GPT disk with one partition.
constexpr const char* kSmallMbrDisk = R"({"disks": [{"index": 1, "size": "8 GiB", "signature": 439041101,
    "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": "ntfs", "active": true}]}]})";
constexpr const char* kSmallGptDisk = R"({"disks": [{"index": 3, "size": "8 GiB",
    "diskId": "{11111111-2222-3333-4444-555555555555}", "startingUsableOffset": 17408, "usableLength": 8589900288,
    "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": "basic-data", "attributes": 1,
                    "id": "{00000003-0000-0000-0000-000000000000}"}]}]})";

const std::vector<support::LogLine> kUnusedSlotLines = {Info("    Partition Number: 0"),
                                                        Info("    Dynamic partition: False"),
                                                        Info("    Offset: 0"),
                                                        Info("    Length: 0(0.00 GB)"),
                                                        Info("    Rewrite Partition: 0"),
                                                        Info("    Style: MBR"),
                                                        Info("    Type: 0x0"),
                                                        Info("    BootIndicator: 0"),
                                                        Info("    Recognized Partition: 0"),
                                                        Info("    HiddenSectors: 0"),
                                                        Info("")};

class PartitionManagerOutputTest : public testing::Test {
protected:
    // Initialises the manager with the only disk of the machine.
    template <class Manager>
    static void Initialize(const char* json, Manager& manager) {
        Machine machine(json);
        const UniqueFile drive = machine.Open();
        manager.Initialize(drive);
    }

    template <class Manager>
    static std::vector<std::string> ElementsOf(const Manager& manager) {
        return captured::Elements([&](CMSXmlNode& node) { manager.CaptureInfo(node); });
    }

    support::LoggerCapture log_;
};

TEST_F(PartitionManagerOutputTest, Dump_Gpt_WritesHeaderThenEachPartition) {
    PartitionManagerGPT manager(3);
    Initialize(kSmallGptDisk, manager);
    log_.Clear();

    manager.DumpInfo();

    EXPECT_THAT(log_.Messages(),
                ElementsAre(Info(""), Info("  Disk partition style: 1"), Info("  Number of partitions: 1"),
                            Info("  Disk Id: {11111111-2222-3333-4444-555555555555}"),
                            Info("  Starting Usable Offset: 17408"), Info("  Usable Length: 8589900288"),
                            Info("  Usable Max Partition Count: 128"), Info("    Partition Number: 1"),
                            Info("    Dynamic partition: False"), Info("    Offset: 1048576"),
                            Info("    Length: 1073741824(1.00 GB)"), Info("    Rewrite Partition: 0"),
                            Info("    Style: GPT"),
                            Info("    Type: Basic data partition ({EBD0A0A2-B9E5-4433-87C0-68B6B72699C7})"),
                            Info("    Partition Id: {00000003-0000-0000-0000-000000000000}"),
                            Info("    Attributes: 0x1"), Info("    Name: Basic data partition"), Info("")));
}

TEST_F(PartitionManagerOutputTest, Dump_Mbr_WritesSignatureThenEachEntry) {
    PartitionManagerMBR manager(1);
    Initialize(kSmallMbrDisk, manager);
    log_.Clear();

    manager.DumpInfo();

    std::vector<support::LogLine> lines = {
        Info(""),
        Info("  Disk partition style: 0"),
        Info("  Number of partitions: 4"),
        Info("  Signature: 0x1a2b3c4d"),
        Info("    Partition Number: 1"),
        Info("    Dynamic partition: False"),
        Info("    Offset: 1048576"),
        Info("    Length: 1073741824(1.00 GB)"),
        Info("    Rewrite Partition: 0"),
        Info("    Style: MBR"),
        Info("    Type: 0x7"),
        Info("    BootIndicator: 1"),
        Info("    Recognized Partition: 1"),
        Info("    HiddenSectors: 2048"),
        Info(""),
    };
    for (int slot = 0; slot < 3; ++slot) {
        lines.insert(lines.end(), kUnusedSlotLines.begin(), kUnusedSlotLines.end());
    }
    EXPECT_THAT(log_.Messages(), ElementsAreArray(lines));
}

TEST_F(PartitionManagerOutputTest, Dump_LayoutNotRead_WritesTheStatusOnly) {
    made::GptManager gpt;
    gpt.status().SetError(kGettingDriveLayoutEx, L"why");
    const made::MbrManager mbr;

    gpt.DumpInfo();
    mbr.DumpInfo();

    EXPECT_THAT(log_.Messages(), ElementsAre(Error("operation Getting Drive Layout Ex failed - why"),
                                             Info("operation Verifying partition type has not attempted"),
                                             Info("operation Getting Drive Layout Ex has not attempted"),
                                             Info("operation Verifying partition type has not attempted")));
}

TEST_F(PartitionManagerOutputTest, Dump_OtherStyle_WritesTheStatusThenTheHeader) {
    PartitionManagerMBR manager(3);
    Initialize(kSmallGptDisk, manager);
    log_.Clear();

    manager.DumpInfo();

    ASSERT_GE(log_.Messages().size(), 4U);
    EXPECT_EQ(Error("operation Verifying partition type failed - Partitions are not MBR but is 1 on disk 3"),
              log_.Messages()[0]);
    EXPECT_EQ(Info(""), log_.Messages()[1]);
    EXPECT_EQ(Info("  Disk partition style: 1"), log_.Messages()[2]);
    EXPECT_EQ(Info("  Number of partitions: 1"), log_.Messages()[3]);
}

TEST_F(PartitionManagerOutputTest, Capture_Gpt_WritesTwoElementsOnly) {
    PartitionManagerGPT manager(3);
    Initialize(kSmallGptDisk, manager);

    EXPECT_THAT(ElementsOf(manager), ElementsAre("PartitionStyle=1", "NumberOfPartitions=1"));
}

TEST_F(PartitionManagerOutputTest, Capture_Mbr_WritesEveryEntryInItsElement) {
    PartitionManagerMBR manager(1);
    Initialize(kSmallMbrDisk, manager);

    std::vector<std::string> elements = {
        "PartitionStyle=0",
        "NumberOfPartitions=4",
        "Partition1",
        "Partition1/DynamicPartition=False",
        "Partition1/PartitionNumber=1",
        "Partition1/Offset=1048576",
        "Partition1/Length=1073741824",
        "Partition1/RewritePartition=False",
        "Partition1/Style=MBR",
        "Partition1/Type=7",
        "Partition1/BootIndicator=True",
        "Partition1/RecognizedPartition=True",
        "Partition1/HiddenSectors=2048",
    };
    for (const std::string name : {"Partition2", "Partition3", "Partition4"}) {
        elements.push_back(name);
        for (const char* value :
             {"DynamicPartition=False", "PartitionNumber=0", "Offset=0", "Length=0", "RewritePartition=False",
              "Style=MBR", "Type=0", "BootIndicator=False", "RecognizedPartition=False", "HiddenSectors=0"}) {
            elements.push_back(name + "/" + value);
        }
    }
    EXPECT_THAT(ElementsOf(manager), ElementsAreArray(elements));
}

TEST_F(PartitionManagerOutputTest, Capture_Mbr_MoreThanNineEntries_AreNumberedOn) {
    made::MbrManager manager;
    for (std::int64_t i = 0; i < 12; ++i) {
        const PartitionPtr partition = manager.CreatePartition();
        partition->Initialize(entries::Mbr((i + 1) << 20, 1 << 20));
        manager.list().push_back(partition);
    }

    const std::vector<std::string> elements = ElementsOf(manager);

    EXPECT_THAT(elements, testing::Contains("Partition1/Offset=1048576"));
    EXPECT_THAT(elements, testing::Contains("Partition12/Offset=12582912"));
}

TEST_F(PartitionManagerOutputTest, DumpAndCapture_TraceThemselves) {
    const made::GptManager gpt;
    const made::MbrManager mbr;
    gpt.DumpInfo();
    mbr.DumpInfo();
    ElementsOf(gpt);
    ElementsOf(mbr);

    for (const std::string function :
         {"bmr_common::PartitionManagerGPT::DumpInfo", "bmr_common::PartitionManagerMBR::DumpInfo",
          "bmr_common::PartitionManager::DumpInfo", "bmr_common::PartitionManager::CaptureInfo",
          "bmr_common::PartitionManagerMBR::CaptureInfo"}) {
        EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "Entering function " + function + " line "))
            << function;
        EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "Leaving function " + function + " line "))
            << function;
    }
}

}  // namespace
}  // namespace bmr_common

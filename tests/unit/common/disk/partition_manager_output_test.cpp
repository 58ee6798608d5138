#include "common/disk/partition_manager_gpt.h"
#include "common/disk/partition_manager_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::Machine;
using support::Error;
using support::Info;
using testing::ElementsAre;

// A GPT disk with one partition.
constexpr const char* kSmallGptDisk = R"({"disks": [{"index": 3, "size": "8 GiB",
    "diskId": "{11111111-2222-3333-4444-555555555555}", "startingUsableOffset": 17408, "usableLength": 8589900288,
    "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": "basic-data", "attributes": 1,
                    "id": "{00000003-0000-0000-0000-000000000000}"}]}]})";

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

}  // namespace
}  // namespace bmr_common

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "common/platform/system_library.h"
#include "support/logger_capture.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstring>
#include <regex>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Error;
using testing::StartsWith;

constexpr const char* kCreate = "DeviceIoControl:IOCTL_DISK_CREATE_DISK";
constexpr const char* kUpdate = "DeviceIoControl:IOCTL_DISK_UPDATE_PROPERTIES";
constexpr const char* kFunction = "bmr_common::DiskDriveManager::InitializeRAWDisk";

constexpr GUID kDiskId = {0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55}};

// Uses disk 12, which is raw.
class DiskRawWritingTest : public testing::Test {
protected:
    bool Initialize() { return DiskDriveManager::InitializeRAWDisk(12, description_); }
    bool IsStillRaw() { return machine_.disk().style == PARTITION_STYLE_RAW; }

    simulated_disks::Machine machine_{R"({"disks": [{"index": 12, "size": "1 GiB"}]})"};
    CREATE_DISK description_ = [] {
        CREATE_DISK description{};
        description.PartitionStyle = PARTITION_STYLE_GPT;
        description.Gpt.DiskId = kDiskId;
        description.Gpt.MaxPartitionCount = 128;
        return description;
    }();
    support::LoggerCapture log_;
};

TEST_F(DiskRawWritingTest, Initialize_StepRefused_LogsAndCloses) {
    const std::string function = kFunction;
    struct Step {
        const char* call;
        DWORD error;
        std::vector<support::LogLine> lines;
        bool still_raw;
    };
    const Step steps[] = {
        {"CreateFileW", ERROR_ACCESS_DENIED, {Error(function + " OpenPhysicalDrive disk 12 error=5")}, true},
        {kCreate,
         ERROR_WRITE_PROTECT,
         {Error("win::WinAPIWrapper::CreateDisk IOCTL_DISK_CREATE_DISK error=19"),
          Error(function + " IOCTL_DISK_CREATE_DISK disk 12 error=19")},
         true},
        {kUpdate,
         ERROR_NOT_READY,
         {Error("win::WinAPIWrapper::UpdateDiskProperties IOCTL_DISK_UPDATE_PROPERTIES error=21")},
         false},
        {"FlushFileBuffers", ERROR_ACCESS_DENIED, {Error(function + " error=5")}, false},
    };
    for (const Step& step : steps) {
        machine_.simulation().faults().Clear();
        machine_.simulation().faults().Fail(step.call, step.error);
        log_.Clear();
        EXPECT_FALSE(Initialize()) << step.call;
        EXPECT_EQ(0U, machine_.simulation().open_handles()) << step.call;
        EXPECT_EQ(step.still_raw, IsStillRaw()) << step.call;
        EXPECT_EQ(step.lines, log_.Messages());
    }
}

DWORD sent_bytes = 0;
CREATE_DISK sent{};
decltype(Kernel32DLL::DeviceIoControl) simulated_control = nullptr;
BOOL WINAPI KeepDescription(HANDLE device, DWORD code, void* input, DWORD input_bytes, void* output,
                            DWORD output_bytes, DWORD* returned, OVERLAPPED* overlapped) {
    if (code == IOCTL_DISK_CREATE_DISK && input_bytes <= sizeof(sent)) {
        sent_bytes = input_bytes;
        std::memcpy(&sent, input, input_bytes);
    }
    return simulated_control(device, code, input, input_bytes, output, output_bytes, returned, overlapped);
}

TEST_F(DiskRawWritingTest, CreateRawDisk_Mbr_SendsTheSignatureIn24Bytes) {
    DiskDriveManagerMBR disk(3);
    disk.SetUniqueIdToRandom();
    simulated_control = Kernel32DLL::Get().DeviceIoControl;
    Kernel32DLL::Get().DeviceIoControl = &KeepDescription;

    EXPECT_TRUE(disk.CreateRawDisk(12));

    Kernel32DLL::Get().DeviceIoControl = simulated_control;
    CREATE_DISK expected{};
    expected.PartitionStyle = PARTITION_STYLE_MBR;
    expected.Mbr.Signature = disk.geometry().signature();
    EXPECT_EQ(24U, sent_bytes);
    EXPECT_EQ(0, std::memcmp(&expected, &sent, sizeof(expected)));
    EXPECT_EQ(0U, machine_.disk().style);
    EXPECT_EQ(disk.geometry().signature(), machine_.disk().signature);
}

TEST_F(DiskRawWritingTest, CreateRawDisk_DiskThatCannotBeDescribed_LogsAndWritesNothing) {
    const DiskDriveManagerUnknown disk(3);

    EXPECT_FALSE(disk.CreateRawDisk(12));

    EXPECT_EQ(0U, machine_.simulation().calls().size());
    const std::vector<support::LogLine> lines = log_.Messages();
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ(
        Error("bmr_common::DiskDriveManagerUnknown::SetupDiskStruct not implemented for this disk type."),
        lines[0]);
    EXPECT_EQ(support::kHostError, lines[1].level);
    EXPECT_THAT(lines[1].text, StartsWith("bmr_common::DiskDriveManager::CreateRawDisk failed for disk "));
}

TEST_F(DiskRawWritingTest, CreateRawDisk_DiskThatCannotBeDescribed_ShowsAnotherNumber) {
    const DiskDriveManagerUnknown disk(3);

    EXPECT_FALSE(disk.CreateRawDisk(12));

    const std::vector<std::string> lines = log_.Lines(support::kHostError);
    ASSERT_EQ(2U, lines.size());
    EXPECT_TRUE(std::regex_match(
        lines[1], std::regex("bmr_common::DiskDriveManager::CreateRawDisk failed for disk [0-9]+")))
        << log_;
    EXPECT_NE("bmr_common::DiskDriveManager::CreateRawDisk failed for disk 12", lines[1]);
}

}  // namespace
}  // namespace bmr_common

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "common/platform/system_library.h"
#include "support/logger_capture.h"
#include "unit/common/disk/expected_lines.h"
#include "unit/common/disk/listed_disks.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <regex>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using expected::Error;
using testing::ElementsAre;
using testing::IsEmpty;
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

TEST_F(DiskRawWritingTest, Initialize_Raw_OpensCreatesUpdatesFlushesCloses) {
    EXPECT_TRUE(Initialize());

    EXPECT_EQ(std::string("CreateFileW ") + kCreate + " " + kUpdate + " FlushFileBuffers CloseHandle ",
              machine_.CallNames());
    EXPECT_EQ(L"\\\\.\\PhysicalDrive12", machine_.simulation().calls().records().front().object);
    EXPECT_EQ(1U, machine_.disk().style);
    EXPECT_TRUE(IsEqualGUID(kDiskId, machine_.disk().disk_id));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(DiskRawWritingTest, Initialize_OpenRefused_LogsAndLeavesTheDisk) {
    machine_.simulation().faults().Fail("CreateFileW", ERROR_ACCESS_DENIED);

    EXPECT_FALSE(Initialize());

    EXPECT_TRUE(IsStillRaw());
    EXPECT_EQ("CreateFileW ", machine_.CallNames());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error(std::string(kFunction) + " OpenPhysicalDrive disk 12 error=5")));
}

TEST_F(DiskRawWritingTest, Initialize_CreateRefused_LogsTwiceClosesAndLeavesTheDisk) {
    machine_.simulation().faults().Fail(kCreate, ERROR_WRITE_PROTECT);

    EXPECT_FALSE(Initialize());

    EXPECT_TRUE(IsStillRaw());
    EXPECT_EQ(std::string("CreateFileW ") + kCreate + " CloseHandle ", machine_.CallNames());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("win::WinAPIWrapper::CreateDisk IOCTL_DISK_CREATE_DISK error=19"),
                            Error(std::string(kFunction) + " IOCTL_DISK_CREATE_DISK disk 12 error=19")));
}

TEST_F(DiskRawWritingTest, Initialize_UpdateRefused_LogsAndCloses) {
    machine_.simulation().faults().Fail(kUpdate, ERROR_NOT_READY);

    EXPECT_FALSE(Initialize());

    EXPECT_EQ(std::string("CreateFileW ") + kCreate + " " + kUpdate + " CloseHandle ", machine_.CallNames());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("win::WinAPIWrapper::UpdateDiskProperties "
                                                   "IOCTL_DISK_UPDATE_PROPERTIES error=21")));
}

TEST_F(DiskRawWritingTest, Initialize_FlushNotSupported_IsAcceptedWithATraceLine) {
    machine_.simulation().faults().Fail("FlushFileBuffers", ERROR_INVALID_FUNCTION);

    EXPECT_TRUE(Initialize());

    EXPECT_TRUE(log_.Contains(support::kHostTrace, "win::WinAPIWrapper::FlushFileBuffers error=1")) << log_;
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(DiskRawWritingTest, Initialize_FlushRefused_LogsAndCloses) {
    machine_.simulation().faults().Fail("FlushFileBuffers", ERROR_ACCESS_DENIED);

    EXPECT_FALSE(Initialize());

    EXPECT_EQ("CloseHandle", machine_.simulation().calls().records().back().name);
    EXPECT_THAT(log_.Messages(), ElementsAre(Error(std::string(kFunction) + " error=5")));
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

TEST_F(DiskRawWritingTest, CreateRawDisk_PreparedGptDisk_GivesTheDiskItsId) {
    const listed::Disks none;
    const DiskDriveManagerPtr source = DiskDriveManagerFactory().CreateAndInitialize(12);
    DiskDriveManagerGPT disk(12);
    ASSERT_TRUE(disk.InitializeUsingGeometryOf(source, none));

    EXPECT_TRUE(disk.CreateRawDisk(12));

    EXPECT_EQ(1U, machine_.disk().style);
    EXPECT_TRUE(IsEqualGUID(disk.geometry().disk_id(), machine_.disk().disk_id));
}

TEST_F(DiskRawWritingTest, CreateRawDisk_DiskThatCannotBeDescribed_LogsAndWritesNothing) {
    const DiskDriveManagerUnknown disk(3);

    EXPECT_FALSE(disk.CreateRawDisk(12));

    EXPECT_EQ("", machine_.CallNames());
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

TEST_F(DiskRawWritingTest, CreateRawDisk_NoSuchDisk_IsAFailure) {
    DiskDriveManagerMBR disk(3);

    EXPECT_FALSE(disk.CreateRawDisk(99));

    EXPECT_TRUE(IsStillRaw());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error(std::string(kFunction) + " OpenPhysicalDrive disk 99 error=2")));
}

}  // namespace
}  // namespace bmr_common

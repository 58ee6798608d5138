#include "common/disk/disk_drive_manager_factory.h"

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "common/platform/system_library.h"
#include "support/logger_capture.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::kGptDisk;
using simulated_disks::kMbrDisk;
using simulated_disks::Machine;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kGeometryCall = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX";
constexpr const char* kLayoutCall = "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX";

template <class Kind>
bool Is(const DiskDriveManagerPtr& disk) {
    return dynamic_cast<const Kind*>(disk.get()) != nullptr;
}

class DiskDriveManagerFactoryTest : public testing::Test {
protected:
    std::vector<std::wstring> ReasonsOf(const DiskDriveManagerPtr& disk) {
        std::vector<std::wstring> reasons;
        EXPECT_FALSE(disk->can_backup(reasons));
        return reasons;
    }

    DiskDriveManagerFactory factory_;
    support::LoggerCapture log_;
};

TEST_F(DiskDriveManagerFactoryTest, Creators_EachKind_IsNotInitialised) {
    const DiskDriveManagerPtr disks[] = {factory_.CreateUnknown(7), factory_.CreateMBR(7),
                                         factory_.CreateGPT(7)};

    EXPECT_TRUE(Is<DiskDriveManagerUnknown>(disks[0]));
    EXPECT_TRUE(Is<DiskDriveManagerMBR>(disks[1]));
    EXPECT_TRUE(Is<DiskDriveManagerGPT>(disks[2]));
    for (const DiskDriveManagerPtr& disk : disks) {
        EXPECT_EQ(7U, disk->disk_index());
        EXPECT_EQ(0U, disk->ErrorCount());
        EXPECT_FALSE(disk->IsSucceeded(L"Opening Disk"));
        EXPECT_FALSE(disk->IsSucceeded(L"Getting Drive Geometry"));
    }
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_GptDisk_IsInitialised) {
    Machine machine(kGptDisk);

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

    ASSERT_TRUE(Is<DiskDriveManagerGPT>(disk));
    EXPECT_EQ(3U, disk->disk_index());
    EXPECT_TRUE(disk->IsSucceeded(L"Opening Disk"));
    EXPECT_TRUE(disk->IsSucceeded(L"Getting Drive Geometry"));
    EXPECT_EQ(3U, disk->GetPartitionCount());
    EXPECT_EQ(10LL << 30, disk->geometry().disk_size());
    std::vector<std::wstring> reasons;
    EXPECT_TRUE(disk->can_backup(reasons));
    EXPECT_THAT(reasons, IsEmpty());
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_MbrDisk_IsInitialised) {
    Machine machine(kMbrDisk);

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(1);

    ASSERT_TRUE(Is<DiskDriveManagerMBR>(disk));
    EXPECT_EQ(4U, disk->GetPartitionCount());
    std::vector<std::wstring> reasons;
    EXPECT_TRUE(disk->can_backup(reasons));
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_AnyDisk_OpensQueriesAndCloses) {
    Machine machine(kMbrDisk);

    factory_.CreateAndInitialize(1);

    EXPECT_EQ(std::string("CreateFileW ") + kGeometryCall + " " + kLayoutCall + " CloseHandle ", [&] {
        // The layout may be queried twice, because it does not fit the first buffer.
        std::string names = machine.CallNames();
        const std::string twice = std::string(kLayoutCall) + " " + kLayoutCall;
        const std::size_t at = names.find(twice);
        return at == std::string::npos ? names : names.replace(at, twice.size(), kLayoutCall);
    }());
}

DWORD opening_access = 0;
HANDLE WINAPI KeepAccess(LPCWSTR /*path*/, DWORD access, DWORD /*share*/, SECURITY_ATTRIBUTES* /*security*/,
                         DWORD /*disposition*/, DWORD /*flags*/, HANDLE /*model*/) {
    opening_access = access;
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_Opening_AsksForQueriesOnly) {
    opening_access = GENERIC_ALL;
    const auto previous = Kernel32DLL::Get().CreateFileW;
    Kernel32DLL::Get().CreateFileW = &KeepAccess;

    factory_.CreateAndInitialize(1);

    Kernel32DLL::Get().CreateFileW = previous;
    EXPECT_EQ(0U, opening_access);
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_MbrWithoutSignature_IsUnknown) {
    Machine machine(kMbrDisk);
    machine.disk().signature = 0;

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(1);

    EXPECT_TRUE(Is<DiskDriveManagerUnknown>(disk));
    EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Unknown disk partition style 0"));
    EXPECT_EQ(0U, machine.simulation().calls().Count(kLayoutCall));
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_GptWithoutId_IsGptAllTheSame) {
    Machine machine(kGptDisk);
    machine.disk().disk_id = GUID{};

    EXPECT_TRUE(Is<DiskDriveManagerGPT>(factory_.CreateAndInitialize(3)));
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_RawOrOddStyle_IsUnknown) {
    for (const std::uint32_t style : {2U, 3U, 0xFFFFFFFFU}) {
        Machine machine(kGptDisk);
        machine.disk().style = style;

        const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

        EXPECT_TRUE(Is<DiskDriveManagerUnknown>(disk)) << style;
        EXPECT_TRUE(disk->IsSucceeded(L"Getting Drive Geometry"));
        EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Unknown disk partition style " + std::to_wstring(style)));
    }
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_NoSuchDisk_IsUnknownWithTheOpeningError) {
    Machine machine(kGptDisk);

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(12);

    ASSERT_TRUE(Is<DiskDriveManagerUnknown>(disk));
    EXPECT_EQ(12U, disk->disk_index());
    EXPECT_TRUE(disk->IsFailed(L"Opening Disk"));
    EXPECT_FALSE(disk->IsFailed(L"Getting Drive Geometry"));
    EXPECT_FALSE(disk->IsSucceeded(L"Getting Drive Geometry"));
    EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Failed to open hard disk 12 error: 2"));
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_GeometryRefused_IsUnknownWithTheGeometryError) {
    Machine machine(kGptDisk);
    machine.simulation().faults().Fail(kGeometryCall, ERROR_NOT_READY);

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

    ASSERT_TRUE(Is<DiskDriveManagerUnknown>(disk));
    EXPECT_TRUE(disk->IsSucceeded(L"Opening Disk"));
    EXPECT_TRUE(disk->IsFailed(L"Getting Drive Geometry"));
    EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Failed to GetDriveGeometryEx for disk 3 error: 21"));
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_GeometryThatIsNone_IsARecordedError) {
    for (const std::uint64_t returned : {std::uint64_t{0}, std::uint64_t{31}, std::uint64_t{55},
                                         std::uint64_t{513}, std::uint64_t{0xFFFFFFFF}}) {
        Machine machine(kGptDisk);
        machine.simulation().faults().Alter(kGeometryCall,
                                            [&](machine::Answer& answer) { answer.returned = returned; });

        const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

        EXPECT_TRUE(Is<DiskDriveManagerUnknown>(disk)) << returned;
        EXPECT_TRUE(disk->IsFailed(L"Getting Drive Geometry")) << returned;
    }
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_LayoutRefused_StaysInTheTablesStatus) {
    Machine machine(kGptDisk);
    machine.simulation().faults().Fail(kLayoutCall, ERROR_NOT_READY);

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

    ASSERT_TRUE(Is<DiskDriveManagerGPT>(disk));
    EXPECT_EQ(0U, disk->ErrorCount());
    EXPECT_EQ(0U, disk->GetPartitionCount());
    EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Failed to get drive 3 layout information error: 21"));
}

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_LayoutOfTheOtherStyle_IsRefusedForThat) {
    Machine machine(kGptDisk);
    machine.simulation().faults().Alter(kLayoutCall, [](machine::Answer& answer) {
        if (!answer.failed) {
            std::memset(answer.bytes.data(), 0, sizeof(DWORD));
        }
    });

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

    EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Partitions are not GPT but is 0 on disk 3"));
}

}  // namespace
}  // namespace bmr_common

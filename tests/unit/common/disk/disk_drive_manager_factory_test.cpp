#include "common/disk/disk_drive_manager_factory.h"

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "common/platform/system_library.h"
#include "support/logger_capture.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::kGptDisk;
using simulated_disks::kMbrDisk;
using simulated_disks::Machine;
using testing::ElementsAre;

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

TEST_F(DiskDriveManagerFactoryTest, CreateAndInitialize_GeometryRefused_IsUnknownWithTheGeometryError) {
    Machine machine(kGptDisk);
    machine.simulation().faults().Fail(kGeometryCall, ERROR_NOT_READY);

    const DiskDriveManagerPtr disk = factory_.CreateAndInitialize(3);

    ASSERT_TRUE(Is<DiskDriveManagerUnknown>(disk));
    EXPECT_TRUE(disk->IsSucceeded(L"Opening Disk"));
    EXPECT_TRUE(disk->IsFailed(L"Getting Drive Geometry"));
    EXPECT_THAT(ReasonsOf(disk), ElementsAre(L"Failed to GetDriveGeometryEx for disk 3 error: 21"));
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

}  // namespace
}  // namespace bmr_common

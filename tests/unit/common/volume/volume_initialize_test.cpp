#include "common/platform/system_library.h"
#include "common/volume/volume.h"
#include "support/each_of.h"
#include "support/logger_capture.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

#include <string>

namespace bmr_common {
namespace {

using described::kDataDevice;
using described::kDataId;
using testing::ElementsAre;

constexpr const char* kLengthCall = "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO";
constexpr const char* kExtentsCall = "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS";

// A query: its operation, the system call it makes, and the error text recorded when that fails.
struct QueryCase {
    const wchar_t* operation;
    const char* call;
    const wchar_t* failure;
};

constexpr QueryCase kQueries[] = {
    {L"Getting Drive Type", "GetDriveTypeW", L"Failed to get drive type"},
    {L"Getting Device Name", "QueryDosDeviceW", L"Failed to get device name"},
    {L"Getting mount points", "GetVolumePathNamesForVolumeNameW", L"Failed to get mount points"},
    {L"Getting volume information", "GetVolumeInformationW", L"Failed to get volume information"},
    {L"Getting volume free space", "GetDiskFreeSpaceW", L"Failed to get disk free space"},
    {L"Getting volume free space ex", "GetDiskFreeSpaceExW", L"Failed to get disk free space ex"},
    {L"Opening volume", "CreateFileW", L"Failed to open volume"},
    {L"Getting volume partition size", kLengthCall, L"Failed to get volume partition size"},
    {L"Getting disk extents", kExtentsCall, L"Failed to GetVolumeDiskExtents"},
};

bool IsInitial(const Volume& volume, const std::wstring& operation) {
    return !volume.IsFailed(operation) && !volume.IsSucceeded(operation);
}

class VolumeInitializeTest : public testing::Test {
protected:
    bool Initialize(Volume& volume) { return volume.Initialize(L"", L"", machine_.disks()); }
    machine::FaultPlan& faults() { return machine_.simulation().faults(); }

    support::LoggerCapture log_;
    described::Machine machine_;
};

DWORD opening_access = 0;
DWORD opening_flags = 0;
DWORD opening_disposition = 0;
HANDLE WINAPI KeepOpening(LPCWSTR /*path*/, DWORD access, DWORD /*share*/, SECURITY_ATTRIBUTES* /*security*/,
                          DWORD disposition, DWORD flags, HANDLE /*model*/) {
    opening_access = access;
    opening_flags = flags;
    opening_disposition = disposition;
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

TEST_F(VolumeInitializeTest, OpenVolume_AsksToReadWithoutBuffering) {
    const auto previous = Kernel32DLL::Get().CreateFileW;
    Kernel32DLL::Get().CreateFileW = &KeepOpening;
    Volume volume(kDataId, kDataDevice);

    Initialize(volume);

    Kernel32DLL::Get().CreateFileW = previous;
    EXPECT_EQ(0x80000000U, opening_access);
    EXPECT_EQ(0x22000000U, opening_flags);
    EXPECT_EQ(DWORD{OPEN_EXISTING}, opening_disposition);
}

TEST_F(VolumeInitializeTest, EachQueryRefused_IsRecordedAndTheOthersGoOn) {
    for (const QueryCase& query : kQueries) {
        faults().Clear();
        faults().Fail(query.call, ERROR_NOT_READY);
        Volume volume(kDataId);

        EXPECT_FALSE(Initialize(volume)) << query.call;

        EXPECT_TRUE(volume.IsFailed(query.operation)) << query.call;
        const std::wstring opening = L"Opening volume";
        for (const QueryCase& other : kQueries) {
            const std::wstring name = other.operation;
            const bool needs_the_name = query.call == std::string("QueryDosDeviceW") && name == opening;
            const bool needs_the_handle =
                name == L"Getting volume partition size" || name == L"Getting disk extents";
            if (name == query.operation || needs_the_name) {
                EXPECT_TRUE(volume.IsFailed(name)) << other.call;
            } else if (needs_the_handle && volume.IsFailed(opening)) {
                EXPECT_TRUE(IsInitial(volume, name)) << other.call;
            } else {
                EXPECT_TRUE(volume.IsSucceeded(name)) << query.call << " " << other.call;
            }
        }
        EXPECT_EQ(0U, machine_.simulation().open_handles()) << query.call;
    }
}

TEST_F(VolumeInitializeTest, EachQueryRefused_RecordsItsText) {
    for (const QueryCase& query : kQueries) {
        if (query.operation == std::wstring(L"Getting Drive Type")) {
            continue;  // the drive type is the reason for such a volume; the text does not appear
        }
        faults().Clear();
        faults().Fail(query.call, ERROR_NOT_READY);
        faults().Fail(kExtentsCall, ERROR_NOT_READY);  // makes all recorded texts reasons
        faults().Fail("GetVolumeInformationW", ERROR_NOT_READY);
        Volume volume(kDataId);

        Initialize(volume);

        EXPECT_THAT(volume.backup_failure_reasons(), testing::Contains(std::wstring(query.failure)));
    }
}

TEST_F(VolumeInitializeTest, RemovableVolume_AsksThreeQuestionsOnly) {
    machine_.volume(1).drive_type = DRIVE_REMOVABLE;
    Volume volume(kDataId, kDataDevice);

    EXPECT_TRUE(Initialize(volume));

    EXPECT_THAT(support::EachOf(machine_.simulation().calls().records(), &machine::CallRecord::name),
                ElementsAre("GetDriveTypeW", "GetVolumePathNamesForVolumeNameW"));
    for (const QueryCase& query : kQueries) {
        const std::wstring name = query.operation;
        const bool asked = name == L"Getting Drive Type" || name == L"Getting Device Name" ||
                           name == L"Getting mount points";
        EXPECT_EQ(asked, volume.IsSucceeded(name)) << query.call;
        EXPECT_EQ(!asked, IsInitial(volume, name)) << query.call;
    }
    EXPECT_THAT(volume.backup_failure_reasons(), ElementsAre(L"This not a fixed disk, type is 2"));
}

TEST_F(VolumeInitializeTest, CdRom_IsAskedEverything) {
    machine_.volume(1).drive_type = DRIVE_CDROM;
    Volume volume(kDataId, kDataDevice);

    EXPECT_TRUE(Initialize(volume));

    EXPECT_TRUE(volume.IsSucceeded(L"Getting disk extents"));
    EXPECT_THAT(volume.backup_failure_reasons(), ElementsAre(L"This not a fixed disk, type is 5"));
}

}  // namespace
}  // namespace bmr_common

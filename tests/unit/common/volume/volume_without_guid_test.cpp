#include "common/volume/volume.h"
#include "support/dos_device_answers.h"
#include "support/logger_capture.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

namespace bmr_common {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const wchar_t* kDevice = L"\\Device\\HarddiskVolume2";
constexpr const wchar_t* kDevicePath = L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume2\\";

// Volumes that are identified only by their device name and drive letters.
class VolumeWithoutGuidTest : public testing::Test {
protected:
    void AddDosDevice(const wchar_t* name, const wchar_t* target) {
        machine_.simulation().description().dos_devices.push_back({name, target});
    }
    bool Initialize(Volume& volume) { return volume.Initialize(L"", L"", machine_.disks()); }

    support::LoggerCapture log_;
    described::Machine machine_;
};

TEST_F(VolumeWithoutGuidTest, DeviceName_IsWhatTheSystemIsAskedBy) {
    Volume volume(L"", kDevice);

    EXPECT_TRUE(Initialize(volume));

    const auto& calls = machine_.simulation().calls();
    for (const char* call :
         {"GetDriveTypeW", "GetVolumeInformationW", "GetDiskFreeSpaceW", "GetDiskFreeSpaceExW"}) {
        EXPECT_EQ(1U, calls.Count(call, kDevicePath)) << call;
    }
    EXPECT_EQ(L"", volume.volume_id());
    EXPECT_EQ(L"", volume.volume_guid());
    EXPECT_EQ(L"Data & <more>", volume.information().label);
}

TEST_F(VolumeWithoutGuidTest, MountPoints_AreTheDriveLettersOfTheDevice) {
    AddDosDevice(L"Q:", L"\\Device\\HARDDISKVOLUME2");
    AddDosDevice(L"R:", L"\\Device\\HarddiskVolume22");
    AddDosDevice(L"Alias", kDevice);
    AddDosDevice(L"S", kDevice);
    Volume volume(L"", kDevice);

    EXPECT_TRUE(Initialize(volume));

    EXPECT_THAT(volume.mount_points(), ElementsAre(L"D:\\", L"Q:\\"));
    EXPECT_EQ(0U, machine_.simulation().calls().Count("GetVolumePathNamesForVolumeNameW"));
    EXPECT_EQ(0U, machine_.simulation().calls().Count("QueryDosDeviceW", L"Alias"));
}

TEST_F(VolumeWithoutGuidTest, MountPoints_NoLetter_IsASuccessWithNone) {
    Volume volume(L"", L"\\Device\\HarddiskVolume1");

    EXPECT_TRUE(Initialize(volume));

    EXPECT_TRUE(volume.IsSucceeded(L"Getting mount points"));
    EXPECT_THAT(volume.mount_points(), IsEmpty());
}

TEST_F(VolumeWithoutGuidTest, MountPoints_ListingRefused_IsRecorded) {
    machine_.simulation().faults().Fail("QueryDosDeviceW", ERROR_ACCESS_DENIED);
    Volume volume(L"", kDevice);

    EXPECT_FALSE(Initialize(volume));

    EXPECT_TRUE(volume.IsFailed(L"Getting mount points"));
    EXPECT_THAT(volume.backup_failure_reasons(), ElementsAre(L"Failed to get mount points"));
}

TEST_F(VolumeWithoutGuidTest, MountPoints_OneLetterRefused_IsRecorded) {
    AddDosDevice(L"Q:", kDevice);
    machine_.simulation().faults().Fail("QueryDosDeviceW", ERROR_ACCESS_DENIED, L"Q:");
    Volume volume(L"", kDevice);

    EXPECT_FALSE(Initialize(volume));

    EXPECT_TRUE(volume.IsFailed(L"Getting mount points"));
}

TEST_F(VolumeWithoutGuidTest, MountPoints_LetterWithoutATarget_IsPassedOver) {
    AddDosDevice(L"B:", kDevice);
    support::AnswerNoTarget(machine_.simulation().faults(), L"B:");
    Volume volume(L"", kDevice);

    EXPECT_TRUE(Initialize(volume));

    EXPECT_EQ(1U, machine_.simulation().faults().hits());
    EXPECT_THAT(volume.mount_points(), ElementsAre(L"D:\\"));
}

TEST_F(VolumeWithoutGuidTest, NeitherNameKnown_AsksNothingThatTheCurrentDriveWouldAnswer) {
    Volume volume(L"");

    EXPECT_FALSE(Initialize(volume));

    EXPECT_TRUE(volume.IsFailed(L"Getting Drive Type"));
    EXPECT_TRUE(volume.IsFailed(L"Getting Device Name"));
    for (const char* call : {"GetDriveTypeW", "GetVolumeInformationW", "GetDiskFreeSpaceW",
                             "GetDiskFreeSpaceExW", "CreateFileW"}) {
        EXPECT_EQ(0U, machine_.simulation().calls().Count(call)) << call;
    }
    EXPECT_FALSE(volume.found_fit_for_backup());
}

}  // namespace
}  // namespace bmr_common

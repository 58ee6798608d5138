#include "common/volume/volume.h"
#include "support/dos_device_answers.h"
#include "support/logger_capture.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

#include <string>

namespace bmr_common {
namespace {

using described::kDataDevice;
using described::kDataId;
using testing::ElementsAre;

// A volume's names, and whether they make it the system or the boot volume.
class VolumeIdentityTest : public testing::Test {
protected:
    bool Initialize(Volume& volume, const std::wstring& system = {}, const std::wstring& boot = {}) {
        return volume.Initialize(system, boot, machine_.disks());
    }

    support::LoggerCapture log_;
    described::Machine machine_;
};

TEST_F(VolumeIdentityTest, DeviceNameGiven_IsNormalisedWithoutAsking) {
    Volume volume(kDataId, L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume2\\");

    EXPECT_TRUE(Initialize(volume));

    EXPECT_EQ(kDataDevice, volume.device_name());
    EXPECT_EQ(0U, machine_.simulation().calls().Count("QueryDosDeviceW"));
}

TEST_F(VolumeIdentityTest, DeviceNameNotGiven_IsAskedByTheGuidName) {
    Volume volume(kDataId);

    EXPECT_TRUE(Initialize(volume));

    EXPECT_EQ(kDataDevice, volume.device_name());
    EXPECT_EQ(1U, machine_.simulation().calls().Count("QueryDosDeviceW",
                                                      L"Volume{00000000-0000-0000-0000-000000000002}"));
}

TEST_F(VolumeIdentityTest, GuidNameWithoutATarget_IsRecordedAsNoName) {
    support::AnswerNoTarget(machine_.simulation().faults());
    Volume volume(kDataId);

    EXPECT_FALSE(Initialize(volume));

    EXPECT_EQ(1U, machine_.simulation().faults().hits());
    EXPECT_TRUE(volume.IsFailed(L"Getting Device Name"));
    EXPECT_EQ(L"", volume.device_name());
    EXPECT_THAT(volume.backup_failure_reasons(),
                ElementsAre(L"Failed to get device name", L"Failed to open volume"));
}

TEST_F(VolumeIdentityTest, DeviceNameOfAnotherForm_IsRecordedAndTheVolumeNotOpened) {
    Volume volume(kDataId, L"C:");

    EXPECT_FALSE(Initialize(volume));

    EXPECT_TRUE(volume.IsFailed(L"Getting Device Name"));
    EXPECT_THAT(volume.backup_failure_reasons(),
                ElementsAre(L"Failed to standardize device name", L"Failed to open volume"));
    EXPECT_EQ(0U, machine_.simulation().calls().Count("CreateFileW"));
}

TEST_F(VolumeIdentityTest, SystemAndBootVolume_AreComparedByNormalisedNames) {
    Volume volume(kDataId, kDataDevice);
    Initialize(volume, L"\\\\?\\GLOBALROOT\\Device\\HARDDISKVOLUME2\\", L"\\Device\\harddiskvolume2");
    EXPECT_TRUE(volume.is_system_volume());
    EXPECT_TRUE(volume.is_boot_volume());

    Volume other(kDataId, kDataDevice);
    Initialize(other, L"\\Device\\HarddiskVolume1", L"\\Device\\HarddiskVolume22");
    EXPECT_FALSE(other.is_system_volume());
    EXPECT_FALSE(other.is_boot_volume());
}

}  // namespace
}  // namespace bmr_common

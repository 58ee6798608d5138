// Format 2: each step of the collection and its failures; backup check and dump.

#include "unit/capture/grabber/workstation_v2.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using support::Info;
using testing::Contains;
using testing::ElementsAre;

constexpr wchar_t kSystemVolume[] = L"\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a03}\\";
constexpr wchar_t kDataVolume[] = L"\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\";

// --- The steps before the conversion.

TEST_F(InfoGrabberV2Test, BootOptionsThatAreMissing_FailLast) {
    machine::Description machine = ExampleMachine("uefi-workstation");
    machine.registry.clear();
    Describe(std::move(machine));
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError), ElementsAre("GetBootOptions Failed to open registry"));
    EXPECT_EQ(record().DiskDrives.size(), 2U);
}

// --- Machines without disks.

TEST_F(InfoGrabberV2Test, OnlyADriveWithoutNumber_HasNoMaximum) {
    machine::WmiValue index;
    index.type = VT_I4;
    index.number = 255;
    Instances(L"Win32_DiskDrive").resize(1);
    machine::SetProperty(Instances(L"Win32_DiskDrive").at(0), {L"Index", index});
    description().volumes.clear();
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError),
                Contains("DeviceManager::GetMaxPhysicalDiskId no devices so no maximum id"));
}

// --- Checking and dumping.

TEST_F(InfoGrabberV2Test, CanBackup_ChecksAgainstItsOwnModel) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    EXPECT_TRUE(grabber_.CanBackup({}, {}, false));
    EXPECT_TRUE(grabber_.CanBackup({kSystemVolume, kDataVolume}, {{0, MiB(1)}}, false)) << log_;
    EXPECT_FALSE(grabber_.CanBackup({kSystemVolume}, {{7, 0}}, false));
    EXPECT_FALSE(grabber_.CanBackup({}, {}, true));  // all volumes include the empty optical drive
}

TEST_F(InfoGrabberV2Test, DumpVolumeInfo_IsTheManagersDump) {
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    log_.Clear();
    grabber_.DumpVolumeInfo();
    EXPECT_THAT(log_.all(), Contains(Info("Number of volumes: 7")));
}

}  // namespace

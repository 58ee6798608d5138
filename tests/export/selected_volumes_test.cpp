// Captures with volumes selected for backup.

#include "export/capture_fixture.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

constexpr char kEnd[] = "CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information";

class SelectedVolumes : public CaptureTest {
protected:
    SelectedVolumes() : CaptureTest(MixedMachine()) {}

    std::vector<std::string> Refused(const std::vector<std::wstring>& volumes) {
        library_.Select(volumes);
        ExpectFailure();
        std::vector<std::string> lines = log_.Lines(support::kHostError);
        // Drop the errors that the disks logged while they were read.
        std::erase_if(lines, [](const std::string& line) { return line.starts_with("bmr_common::"); });
        return lines;
    }

    void ExpectDone(const std::vector<std::wstring>& volumes) {
        library_.Select(volumes);
        EXPECT_EQ(Capture(100000).status, ORVANE_SUCCESS) << log_;
    }
};

TEST_F(SelectedVolumes, UnknownVolume_FailsTheCapture) {
    EXPECT_THAT(Refused({kUnknownVolume}),
                ElementsAre("Backup cannot proceed. Failed to find any information about volume "
                            "\\\\?\\Volume{99999999-0000-0000-0000-000000000000}\\.",
                            kEnd));
}

TEST_F(SelectedVolumes, VolumeOnAMissingDisk_FailsTheCapture) {
    EXPECT_THAT(
        Refused({kVolumeOnMissingDisk}),
        ElementsAre(
            "Volume \\\\?\\Volume{44444444-0000-0000-0000-000000000000}\\ cannot be backed up because:",
            "Extent is on disk 4 but we don't have such disk.", kEnd));
}

TEST_F(SelectedVolumes, VolumeOnADiskThatCannotBeOpened_NamesTheError) {
    simulation().faults().Fail("CreateFileW", 5, L"\\\\.\\PhysicalDrive0");
    EXPECT_THAT(
        Refused({kGoodVolume}),
        ElementsAre(
            "Volume \\\\?\\Volume{11111111-0000-0000-0000-000000000000}\\ (Mounted as: C:\\) cannot be "
            "backed up because:",
            "Failed to open hard disk 0 error: 5", kEnd));
}

TEST_F(SelectedVolumes, VolumeWhoseFreeSpaceIsUnknown_CanBeBackedUp) {
    simulation().faults().Fail("GetDiskFreeSpaceW", 21);
    simulation().faults().Fail("GetDiskFreeSpaceExW", 21);
    ExpectDone({kGoodVolume});
}

TEST_F(SelectedVolumes, EveryRefusal_IsReportedInTheOrderOfTheList) {
    const std::vector<std::string> lines =
        Refused({kVolumeOnRawDisk, kUnknownVolume, kGoodVolume, kRemovableVolume});
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_THAT(lines[0], testing::HasSubstr("{55555555-"));
    EXPECT_THAT(lines[2], testing::HasSubstr("{99999999-"));
    EXPECT_THAT(lines[3], testing::HasSubstr("{33333333-"));
    EXPECT_EQ(lines[5], kEnd);
}

class SelectedVolumesOfALaptop : public CaptureTest {
protected:
    SelectedVolumesOfALaptop() : CaptureTest(Machine("bios-laptop")) {}
};

TEST_F(SelectedVolumesOfALaptop, Format1_JudgesNone) {
    library_.SetXmlFormat(1);
    library_.Select({L"X:", L"\\\\?\\Volume{4e1f7b20-9a6d-11ec-b7c1-806e6f6e6963}\\"});  // the optical drive
    log_.Clear();
    EXPECT_EQ(Capture(1000000).status, ORVANE_SUCCESS) << log_;
    EXPECT_EQ(log_.Count(support::kHostError), 0U) << log_;
}

}  // namespace

#include "support/logger_capture.h"
#include "unit/capture/grabber/fake_grabber.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using orvane::RequestedDisk;
using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::vector<std::wstring>;
using Disks = std::vector<RequestedDisk>;

constexpr std::int64_t kMiB = 1024 * 1024;

class BackupCheck : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(disks_.InitializeWithCurrentDisks());
        ASSERT_TRUE(volumes_.InitializeWithCurrentVolumes(disks_, L"", L""));
    }

    bool Volumes(const Texts& names) { return grabber_.CanBackup(names, volumes_, errors_); }
    bool RequestedDisks(const Disks& disks) { return grabber_.CanBackup(disks, disks_, errors_); }

    // Clears the log and runs the whole check.
    bool Whole(const Texts& names, const Disks& disks, bool all_volumes = false) {
        log_.Clear();
        return grabber_.CanBackup(names, disks, volumes_, disks_, all_volumes);
    }

    machine::Session session_{MixedMachine()};
    bmr_common::DeviceManager disks_;
    bmr_common::VolumeManager volumes_;
    FakeGrabber grabber_;
    Texts errors_;
    support::LoggerCapture log_;
};

// --- Volumes.

TEST_F(BackupCheck, EarlierErrors_AreForgotten) {
    errors_ = {L"of an earlier check"};
    EXPECT_TRUE(Volumes({kGoodVolume}));
    EXPECT_THAT(errors_, IsEmpty());
}

// --- Disks.

TEST_F(BackupCheck, DiskWithThePartition_Passes) {
    EXPECT_TRUE(RequestedDisks({{0, kMiB}, {0, 101 * kMiB}, {1, kMiB}}));
    EXPECT_THAT(errors_, IsEmpty());
}

TEST_F(BackupCheck, UnknownDisk_IsLoggedAtOnceAndReported) {
    log_.Clear();
    EXPECT_FALSE(RequestedDisks({{4294967295U, 0}}));
    EXPECT_THAT(errors_,
                ElementsAre(L"Backup cannot proceed. Failed to find any information about requested disk "
                            L"4294967295."));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("orvane::InfoGrabber::CanBackup Can't find requested disk 4294967295"));
}

TEST_F(BackupCheck, RefusedDisk_IsReportedWithItsReasons) {
    EXPECT_FALSE(RequestedDisks({{2, 0}}));
    EXPECT_THAT(errors_,
                ElementsAre(L"Disk 2 cannot be backed up because:", L"Unknown disk partition style 2"));
}

TEST_F(BackupCheck, OffsetWithoutPartition_IsReported) {
    EXPECT_FALSE(RequestedDisks({{0, kMiB + 512}, {1, -1}, {1, 9223372036854775807}}));
    EXPECT_THAT(
        errors_,
        ElementsAre(L"Disk 0 cannot be backed up because there is no requested partition at offset "
                    L"1049088",
                    L"Disk 1 cannot be backed up because there is no requested partition at offset -1",
                    L"Disk 1 cannot be backed up because there is no requested partition at offset "
                    L"9223372036854775807"));
}

TEST_F(BackupCheck, SeveralDisks_AreAllChecked) {
    EXPECT_FALSE(RequestedDisks({{2, 0}, {0, kMiB}, {7, 0}}));
    EXPECT_THAT(
        errors_,
        ElementsAre(L"Disk 2 cannot be backed up because:", L"Unknown disk partition style 2",
                    L"Backup cannot proceed. Failed to find any information about requested disk 7."));
}

// --- Volumes and disks together.

TEST_F(BackupCheck, NothingSelected_PassesWithoutALine) {
    EXPECT_TRUE(Whole({}, {}));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(BackupCheck, SeveralMountPoints_AreAllNamed) {
    session_.simulation().faults().Fail("GetVolumeInformationW", 21);
    bmr_common::VolumeManager volumes;
    ASSERT_TRUE(volumes.InitializeWithCurrentVolumes(disks_, L"", L""));
    EXPECT_FALSE(grabber_.CanBackup({kTwiceMountedVolume}, volumes, errors_));
    ASSERT_FALSE(errors_.empty());
    EXPECT_EQ(errors_.front(),
              L"Volume \\\\?\\Volume{22222222-0000-0000-0000-000000000000}\\ (Mounted as: D:\\ "
              L"C:\\Data\\) cannot be backed up because:");
}

TEST_F(BackupCheck, RefusedDiskBesidePassingVolumes_FailsWithoutItsLines) {
    EXPECT_FALSE(Whole({kGoodVolume}, {{2, 0}, {1, 512}}));
    EXPECT_THAT(log_.Lines(support::kHostError), IsEmpty());
}

TEST_F(BackupCheck, RefusedDiskBesideRefusedVolume_LogsTheVolumeFirst) {
    EXPECT_FALSE(Whole({kRemovableVolume}, {{1, 512}, {2, 0}}));
    EXPECT_THAT(
        log_.Lines(support::kHostError),
        ElementsAre(
            "Volume \\\\?\\Volume{33333333-0000-0000-0000-000000000000}\\ (Mounted as: E:\\) cannot be "
            "backed up because:",
            "This not a fixed disk, type is 2",
            "Disk 1 cannot be backed up because there is no requested partition at offset 512",
            "Disk 2 cannot be backed up because:", "Unknown disk partition style 2"));
}

TEST_F(BackupCheck, UnknownDiskBesideRefusedVolume_IsLoggedBetweenTheReports) {
    EXPECT_FALSE(Whole({kUnknownVolume}, {{9, 0}}));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("Backup cannot proceed. Failed to find any information about volume "
                            "\\\\?\\Volume{99999999-0000-0000-0000-000000000000}\\.",
                            "orvane::InfoGrabber::CanBackup Can't find requested disk 9",
                            "Backup cannot proceed. Failed to find any information about requested disk 9."));
}

TEST_F(BackupCheck, AllVolumes_TakesThoseOfTheManagerNotTheList) {
    EXPECT_FALSE(Whole({kUnknownVolume}, {}, true));
    EXPECT_THAT(
        log_.Lines(support::kHostError),
        ElementsAre(
            "Volume \\\\?\\Volume{33333333-0000-0000-0000-000000000000}\\ (Mounted as: E:\\) cannot be "
            "backed up because:",
            "This not a fixed disk, type is 2",
            "Volume \\\\?\\Volume{44444444-0000-0000-0000-000000000000}\\ cannot be backed up because:",
            "Extent is on disk 4 but we don't have such disk.",
            "Volume \\\\?\\Volume{55555555-0000-0000-0000-000000000000}\\ (Mounted as: F:\\) cannot be "
            "backed up because:",
            "Unknown disk partition style 2"));
}

TEST_F(BackupCheck, PercentSignInAReport_IsReadAsAConversion) {
    EXPECT_FALSE(Whole({L"100%% full"}, {}));
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("Backup cannot proceed. Failed to find any information about volume 100% full."));
}

TEST_F(BackupCheck, HostileConversionsInAReport_DoNoHarm) {
    EXPECT_FALSE(Whole({L"%s %n %S %*s %ws"}, {}));
    EXPECT_EQ(log_.Count(support::kHostError), 1U) << log_;
}

}  // namespace

#include "common/disk/disk_drive_manager_unknown.h"
#include "common/volume/volume.h"
#include "support/logger_capture.h"
#include "support/text.h"
#include "unit/common/volume/described_volumes.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace bmr_common {
namespace {

using described::kDataDevice;
using described::kDataId;
using testing::ElementsAre;
using testing::IsEmpty;

// Returns the answers that a test sets, and records its calls.
class AnsweringDisk : public DiskDriveManagerUnknown {
public:
    using DiskDriveManagerUnknown::DiskDriveManagerUnknown;

    bool can_backup(std::vector<std::wstring>& reasons) const override {
        ++backup_questions;
        if (!refusal.empty()) {
            reasons.push_back(refusal);
        }
        return refusal.empty();
    }
    bool is_dynamic() const override {
        ++dynamic_questions;
        return dynamic;
    }
    bool ExtentIsOnBootablePartition(const std::int64_t& offset, const std::int64_t& length) const override {
        extents.emplace_back(offset, length);
        return bootable;
    }

    std::wstring refusal;
    bool dynamic = false;
    bool bootable = false;
    mutable int backup_questions = 0;
    mutable int dynamic_questions = 0;
    mutable std::vector<std::pair<std::int64_t, std::int64_t>> extents;
};

class VolumeJudgementTest : public testing::Test {
protected:
    VolumeJudgementTest() {
        disks_.Put(zero_);
        disks_.Put(one_);
    }

    void Lie(std::vector<machine::Extent> extents) { machine_.volume(1).extents = std::move(extents); }
    void Initialize() { volume_.Initialize(L"", L"", disks_); }

    support::LoggerCapture log_;
    described::Machine machine_;
    boost::shared_ptr<AnsweringDisk> zero_ = boost::make_shared<AnsweringDisk>(0U);
    boost::shared_ptr<AnsweringDisk> one_ = boost::make_shared<AnsweringDisk>(1U);
    listed::Disks disks_;
    Volume volume_{kDataId, kDataDevice};
};

TEST_F(VolumeJudgementTest, CanBackup_DisksAgree_IsTrueWithoutReasons) {
    Lie({{0, 0, 1}, {1, 0, 1}, {0, 5, 1}});

    Initialize();

    EXPECT_TRUE(volume_.found_fit_for_backup());
    EXPECT_THAT(volume_.backup_failure_reasons(), IsEmpty());
    EXPECT_EQ(2, zero_->backup_questions);
    EXPECT_EQ(1, one_->backup_questions);
}

TEST_F(VolumeJudgementTest, CanBackup_NoExtents_IsTrue) {
    Lie({});

    Initialize();

    EXPECT_TRUE(volume_.found_fit_for_backup());
}

TEST_F(VolumeJudgementTest, CanBackup_EachTypeButFixed_IsRefusedForIt) {
    for (const UINT type : {1U, 2U, 4U, 5U, 6U, 7U}) {
        machine_.volume(1).drive_type = type;
        Volume volume(kDataId, kDataDevice);
        volume.Initialize(L"", L"", disks_);
        EXPECT_FALSE(volume.found_fit_for_backup());
        EXPECT_THAT(volume.backup_failure_reasons(),
                    ElementsAre(L"This not a fixed disk, type is " + std::to_wstring(type)));
    }
    EXPECT_EQ(0, zero_->backup_questions);
}

TEST_F(VolumeJudgementTest, CanBackup_TypeUnknown_IsRefusedForTypeZero) {
    machine_.simulation().faults().Fail("GetDriveTypeW", ERROR_NOT_READY);

    Initialize();

    EXPECT_THAT(volume_.backup_failure_reasons(), ElementsAre(L"This not a fixed disk, type is 0"));
}

TEST_F(VolumeJudgementTest, CanBackup_NeededQueryFailed_GivesEveryFailureInTheOrderOfTheNames) {
    auto& faults = machine_.simulation().faults();
    faults.Fail("GetDiskFreeSpaceW", ERROR_NOT_READY);
    faults.Fail("GetVolumeInformationW", ERROR_NOT_READY);
    faults.Fail("CreateFileW", ERROR_NOT_READY);
    faults.Fail("GetVolumePathNamesForVolumeNameW", ERROR_NOT_READY);

    Initialize();

    EXPECT_FALSE(volume_.found_fit_for_backup());
    EXPECT_THAT(volume_.backup_failure_reasons(),
                ElementsAre(L"Failed to get mount points", L"Failed to get disk free space",
                            L"Failed to get volume information", L"Failed to open volume"));
    EXPECT_EQ(0, zero_->backup_questions);
}

TEST_F(VolumeJudgementTest, CanBackup_DiskEntryEmpty_IsNoSuchDisk) {
    disks_.PutNothing(L"4");
    Lie({{4, 0, 1}});

    Initialize();

    EXPECT_THAT(volume_.backup_failure_reasons(),
                ElementsAre(L"Extent is on disk 4 but we don't have such disk."));
}

TEST_F(VolumeJudgementTest, CanBackup_DiskRefuses_GivesItsReasonsAndStops) {
    zero_->refusal = L"the disk's own reason";
    Lie({{0, 0, 1}, {1, 0, 1}});

    Initialize();

    EXPECT_FALSE(volume_.found_fit_for_backup());
    EXPECT_THAT(volume_.backup_failure_reasons(), ElementsAre(L"the disk's own reason"));
    EXPECT_EQ(0, one_->backup_questions);
}

TEST_F(VolumeJudgementTest, CanBackup_AskedAgain_JudgesAnew) {
    zero_->refusal = L"first";
    Initialize();
    zero_->refusal = L"second";

    EXPECT_FALSE(volume_.can_backup(disks_));
    EXPECT_THAT(volume_.backup_failure_reasons(), ElementsAre(L"second"));

    zero_->refusal.clear();
    EXPECT_TRUE(volume_.can_backup(disks_));
    EXPECT_TRUE(volume_.found_fit_for_backup());
    EXPECT_THAT(volume_.backup_failure_reasons(), IsEmpty());
}

TEST_F(VolumeJudgementTest, IsDynamic_OneExtent_IsTheDisksAnswer) {
    Initialize();
    EXPECT_FALSE(volume_.found_dynamic());

    zero_->dynamic = true;
    EXPECT_TRUE(volume_.is_dynamic(disks_));
    EXPECT_TRUE(volume_.found_dynamic());
    EXPECT_EQ(2, zero_->dynamic_questions);
}

TEST_F(VolumeJudgementTest, IsDynamic_TwoExtents_NeedsNoDisk) {
    Lie({{8, 0, 1}, {9, 0, 1}});

    Initialize();

    EXPECT_TRUE(volume_.found_dynamic());
    EXPECT_EQ(0, zero_->dynamic_questions);
}

TEST_F(VolumeJudgementTest, IsDynamic_NoSuchDisk_IsLoggedAndFalse) {
    Lie({{4, 0, 1}});

    Initialize();

    EXPECT_FALSE(volume_.found_dynamic());
    const std::string line = "bmr_common::Volume::is_dynamic " + support::Ansi(kDataId) + " no disk 4.";
    EXPECT_EQ(1U, log_.Count(support::kHostWarning, line)) << log_;
}

TEST_F(VolumeJudgementTest, IsOnActivePartition_FirstExtent_IsTheDisksAnswer) {
    one_->bootable = true;
    Lie({{1, 4096, 8192}, {0, 512, 1024}});

    Initialize();

    EXPECT_TRUE(volume_.found_on_active_partition());
    EXPECT_THAT(one_->extents, ElementsAre(std::pair<std::int64_t, std::int64_t>(4096, 8192)));
    EXPECT_THAT(zero_->extents, IsEmpty());
}

TEST_F(VolumeJudgementTest, IsOnActivePartition_NoSuchDisk_IsLoggedAndFalse) {
    Lie({{4, 0, 1}, {0, 0, 1}});
    zero_->bootable = true;

    Initialize();

    EXPECT_FALSE(volume_.found_on_active_partition());
    const std::string line = "bmr_common::Volume::is_on_active_partition Volume " + support::Ansi(kDataId) +
                             " is on non existing disk 4";
    EXPECT_EQ(1U, log_.Count(support::kHostWarning, line)) << log_;
}

}  // namespace
}  // namespace bmr_common

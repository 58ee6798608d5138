#include "common/disk/disk_drive_manager_unknown.h"
#include "common/volume/volume_manager.h"
#include "support/dos_device_answers.h"
#include "support/each_of.h"
#include "support/logger_capture.h"
#include "support/text.h"
#include "unit/common/volume/described_volumes.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFunction = "bmr_common::VolumeManager::InitializeWithCurrentVolumes";

class VolumeDiscoveryTest : public testing::Test {
protected:
    bool Discover(const std::wstring& system = {}, const std::wstring& boot = {}) {
        return manager_.InitializeWithCurrentVolumes(machine_.disks(), system, boot);
    }
    machine::FaultPlan& faults() { return machine_.simulation().faults(); }

    // "device=GUID path" for every volume found.
    std::vector<std::string> Found() const {
        return support::EachOf(manager_.volumes(), [](const VolumePtr& volume) {
            return support::Ansi(volume->device_name()) + "=" + support::Ansi(volume->volume_id());
        });
    }

    // Expects that discovery fails, logs the reason as its only message, and leaves no volumes.
    void ExpectFailureWith(const std::string& reason) {
        VolumeManager manager;
        EXPECT_FALSE(manager.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));
        EXPECT_TRUE(manager.IsFailed(L"Find Volume"));
        EXPECT_THAT(manager.volumes(), IsEmpty());
        EXPECT_THAT(log_.Messages(), ElementsAre(Error(std::string(kFunction) + " " + reason)));
        EXPECT_EQ(0U, machine_.simulation().open_handles());
    }

    support::LoggerCapture log_;
    described::Machine machine_;
    VolumeManager manager_;
};

const std::string kSystem = "\\Device\\HarddiskVolume1=\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\";
constexpr const char* kSkippedLink =
    "bmr_common::VolumeManager::GetDeviceNamesMap - skip volume link "
    "Volume{00000000-0000-0000-0000-000000000001} without a target";
const std::string kData = "\\Device\\HarddiskVolume2=\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\";

TEST_F(VolumeDiscoveryTest, LinkThatTheEnumerationLacks_IsDropped) {
    machine_.volume(1).enumerated = false;

    EXPECT_TRUE(Discover());

    EXPECT_THAT(Found(), ElementsAre(kSystem, "\\Device\\HarddiskVolume2="));
}

TEST_F(VolumeDiscoveryTest, VolumeWithoutALink_HasNoGuidThoughTheEnumerationKnowsIt) {
    machine_.volume(1).linked = false;

    EXPECT_TRUE(Discover());

    EXPECT_THAT(Found(), ElementsAre(kSystem, "\\Device\\HarddiskVolume2="));
}

TEST_F(VolumeDiscoveryTest, DeviceVolumeWithoutGuid_IsFoundByItsDeviceAlone) {
    machine_.volume(1).guid.clear();

    EXPECT_TRUE(Discover());

    ASSERT_THAT(Found(), ElementsAre(kSystem, "\\Device\\HarddiskVolume2="));
    EXPECT_THAT(manager_.volumes()[1]->mount_points(), ElementsAre(L"D:\\"));
    EXPECT_EQ(1U, log_.Count(support::kHostTrace, "DeviceName[\\Device\\HarddiskVolume2] VolumeGUID[]"));
}

TEST_F(VolumeDiscoveryTest, SecondGuidOfADevice_IsSkippedWithALine) {
    machine_.volume(1).aliases = {{L"{00000000-0000-0000-0000-00000000000A}", true}};

    EXPECT_TRUE(Discover());

    EXPECT_THAT(Found(), ElementsAre(kSystem, kData));
    EXPECT_EQ(1U, log_.Count(support::kHostTrace,
                             "bmr_common::VolumeManager::GetDeviceNamesMap - skip saving alias volume GUID "
                             "\\\\?\\Volume{00000000-0000-0000-0000-00000000000A}\\"))
        << log_;
}

TEST_F(VolumeDiscoveryTest, DeviceThatIsNoDiskVolume_IsFoundByItsLinkOnly) {
    machine_.volume(1).device = L"\\Device\\CdRom0";
    EXPECT_TRUE(Discover());
    EXPECT_THAT(Found(), ElementsAre("\\Device\\CdRom0=\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
                                     kSystem));

    machine_.volume(1).linked = false;
    VolumeManager again;
    EXPECT_TRUE(again.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));
    EXPECT_EQ(1U, again.volumes().size());
}

TEST_F(VolumeDiscoveryTest, LettersOfAnotherCase_AreTheSameName) {
    machine::Description& description = machine_.simulation().description();
    description.volumes[1].guid = L"{abcdef00-0000-0000-0000-000000000002}";
    description.directories.push_back({L"\\GLOBAL??",
                                       std::vector<machine::DirectoryEntry>{
                                           {L"volume{ABCDEF00-0000-0000-0000-000000000002}", L"SymbolicLink"},
                                           {L"VolumeOfSomeOtherKind", L"SymbolicLink"}},
                                       {}});
    description.directories.push_back(
        {L"\\Device", std::vector<machine::DirectoryEntry>{{L"HARDDISKVOLUME1", L"Device"}}, {}});

    EXPECT_TRUE(Discover());

    EXPECT_THAT(
        Found(),
        ElementsAre("\\Device\\HARDDISKVOLUME1=",
                    "\\Device\\HarddiskVolume2=\\\\?\\volume{ABCDEF00-0000-0000-0000-000000000002}\\"));
}

TEST_F(VolumeDiscoveryTest, LinkWhoseTargetCannotBeAsked_IsDroppedAlone) {
    faults().Fail("QueryDosDeviceW", ERROR_ACCESS_DENIED, L"Volume{00000000-0000-0000-0000-000000000001}");

    EXPECT_TRUE(Discover());

    EXPECT_THAT(Found(), ElementsAre("\\Device\\HarddiskVolume1=", kData));
    EXPECT_EQ(1U, log_.Count(support::kHostTrace,
                             "WinAPIWrapper::QueryDosDevice of Volume{00000000-0000-0000-0000-000000000001} "
                             "error=5"))
        << log_;
    EXPECT_EQ(1U, log_.Count(support::kHostTrace, kSkippedLink)) << log_;
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(VolumeDiscoveryTest, LinkThatHasNoTarget_IsDroppedAlone) {
    support::AnswerNoTarget(faults(), L"Volume{00000000-0000-0000-0000-000000000001}");

    EXPECT_TRUE(Discover());

    EXPECT_EQ(1U, faults().hits());
    EXPECT_THAT(Found(), ElementsAre("\\Device\\HarddiskVolume1=", kData));
    EXPECT_EQ(1U, log_.Count(support::kHostTrace, kSkippedLink)) << log_;
    EXPECT_FALSE(log_.ContainsPart(support::kHostTrace, "WinAPIWrapper::QueryDosDevice of ")) << log_;
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(VolumeDiscoveryTest, NoLinks_LogsAndFindsNothing) {
    machine_.simulation().description().directories.push_back(
        {L"\\GLOBAL??", std::vector<machine::DirectoryEntry>{{L"C:", L"SymbolicLink"}}, {}});

    EXPECT_TRUE(Discover()) << "a machine without volumes has been looked at";

    EXPECT_TRUE(manager_.IsSucceeded(L"Find Volume"));
    EXPECT_THAT(manager_.volumes(), IsEmpty());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("bmr_common::VolumeManager::GetDeviceNamesMap - volume list is empty")));
    EXPECT_EQ(0U, machine_.simulation().open_handles());
    EXPECT_EQ(0U, machine_.simulation().calls().Count("FindFirstVolumeW"));
}

TEST_F(VolumeDiscoveryTest, FailedStep_IsARecordedFailure) {
    struct Step {
        const char* call;
        std::uint32_t error;
        const wchar_t* object;
        const char* reason;
    };
    const Step steps[] = {
        {"ZwOpenDirectoryObject", 0xC0000022, L"\\Device", "\\Device OpenDirectoryObject failed"},
        {"ZwOpenDirectoryObject", 0xC0000022, L"\\GLOBAL??", "\\GLOBAL?? OpenDirectoryObject failed"},
        {"ZwQueryDirectoryObject", 0xC0000022, L"\\Device", "\\Device QueryDirectoryObject failed error=31"},
        {"FindFirstVolumeW", ERROR_NOT_READY, L"", "failed to FindFirstVolume error=21"},
        {"FindNextVolumeW", ERROR_NOT_READY, L"", "failed to FindNextVolume error=21"},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.reason);
        faults().Clear();
        faults().Fail(step.call, step.error, step.object);
        log_.Clear();
        ExpectFailureWith(step.reason);
    }
}

TEST_F(VolumeDiscoveryTest, ListingBreaksOff_IsARecordedFailure) {
    machine::FaultRule rule;
    rule.name = "ZwQueryDirectoryObject";
    rule.object = L"\\GLOBAL??";
    rule.ordinal = 3;
    faults().Add(rule);

    ExpectFailureWith("\\GLOBAL?? QueryDirectoryObject failed error=31");
}

TEST_F(VolumeDiscoveryTest, DirectoryCannotBeClosed_IsTracedAndNoFailure) {
    faults().Fail("ZwClose", 0xC0000008, L"\\Device");

    EXPECT_TRUE(Discover());

    EXPECT_EQ(2U, manager_.volumes().size());
    EXPECT_EQ(1U, log_.Count(support::kHostTrace,
                             "bmr_common::VolumeManager::GetDeviceNamesList - ZwClose \\Device failed"))
        << log_;
}

TEST_F(VolumeDiscoveryTest, VolumeThatFailsItsQueries_IsStillThere) {
    faults().Fail("GetDriveTypeW", ERROR_NOT_READY);
    faults().Fail("CreateFileW", ERROR_NOT_READY);

    EXPECT_TRUE(Discover());

    EXPECT_THAT(Found(), ElementsAre(kSystem, kData));
    EXPECT_EQ(2U, manager_.volumes()[0]->ErrorCount());
    EXPECT_EQ(0U, manager_.ErrorCount());
}

class ThrowingDisk : public DiskDriveManagerUnknown {
public:
    using DiskDriveManagerUnknown::DiskDriveManagerUnknown;
    bool ExtentIsOnBootablePartition(const std::int64_t& /*offset*/,
                                     const std::int64_t& /*length*/) const override {
        throw std::runtime_error("the disk");
    }
};

TEST_F(VolumeDiscoveryTest, Exception_IsLoggedAndDoesNotEscape) {
    machine_.volume(1).extents = std::vector<machine::Extent>{{6, 0, 512}};
    machine_.disks().Put(boost::make_shared<ThrowingDisk>(6U));

    EXPECT_NO_THROW(EXPECT_FALSE(Discover()));

    EXPECT_THAT(manager_.volumes(), IsEmpty()) << "not even the one that stands before it";

    EXPECT_THAT(log_.Messages(), ElementsAre(Error(std::string("Exception in ") + kFunction)));
    EXPECT_FALSE(manager_.IsSucceeded(L"Find Volume"));
    EXPECT_EQ(0U, machine_.simulation().open_handles());
}

}  // namespace
}  // namespace bmr_common

#include "common/volume/volume_manager.h"
#include "unit/common/volume/described_volumes.h"

#include <gtest/gtest.h>

// A listing without an end is aborted. The log is not captured, because that would store every line.
namespace bmr_common {
namespace {

class VolumeDiscoveryEndlessTest : public testing::Test {
protected:
    VolumeDiscoveryEndlessTest() { machine_.simulation().calls().SetKept(false); }

    void ExpectGivenUp() {
        EXPECT_FALSE(manager_.InitializeWithCurrentVolumes(machine_.disks(), L"", L""));
        EXPECT_TRUE(manager_.IsFailed(L"Find Volume"));
        EXPECT_TRUE(manager_.volumes().empty());
    }

    described::Machine machine_;
    VolumeManager manager_;
};

TEST_F(VolumeDiscoveryEndlessTest, DirectoryWithoutAnEnd_IsARecordedFailure) {
    machine_.simulation().faults().Alter("ZwQueryDirectoryObject",
                                         [](machine::Answer& answer) { answer.value = 0; });

    ExpectGivenUp();
}

TEST_F(VolumeDiscoveryEndlessTest, EnumerationWithoutAnEnd_IsARecordedFailure) {
    machine_.simulation().faults().Alter("FindNextVolumeW", [](machine::Answer& answer) {
        answer.failed = false;
        answer.error = 0;
    });

    ExpectGivenUp();
}

}  // namespace
}  // namespace bmr_common

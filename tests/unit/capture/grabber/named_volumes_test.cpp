#include "capture/grabber/named_volumes.h"

#include "support/logger_capture.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gtest/gtest.h>

namespace {

class NameVolumesTest : public testing::Test {
protected:
    NameVolumesTest() {
        EXPECT_TRUE(disks_.InitializeWithCurrentDisks());
        EXPECT_TRUE(manager_.InitializeWithCurrentVolumes(disks_, L"", L""));
    }

    machine::Session session_{MixedMachine()};
    bmr_common::DeviceManager disks_;
    bmr_common::VolumeManager manager_;
    support::LoggerCapture log_;
    std::vector<orvane::NamedVolume> volumes_;
};

TEST_F(NameVolumesTest, SecondNaming_GivesOtherGuids) {
    std::vector<orvane::NamedVolume> again;
    ASSERT_TRUE(orvane::NameVolumes(manager_, volumes_));
    ASSERT_TRUE(orvane::NameVolumes(manager_, again));
    EXPECT_NE(volumes_[0].second, again[0].second);
}

}  // namespace

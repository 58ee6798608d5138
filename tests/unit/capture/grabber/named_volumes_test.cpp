#include "capture/grabber/named_volumes.h"

#include "support/logger_capture.h"
#include "support/stub.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <regex>
#include <set>

namespace {

using support::LogLine;
using testing::ElementsAre;

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

TEST_F(NameVolumesTest, EveryVolume_GetsAGuidOfItsOwnInRegistryForm) {
    ASSERT_TRUE(orvane::NameVolumes(manager_, volumes_));
    ASSERT_EQ(volumes_.size(), 6U);
    const std::wregex form(L"\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}");
    std::set<std::wstring> guids;
    for (std::size_t i = 0; i < volumes_.size(); ++i) {
        EXPECT_EQ(volumes_[i].first, manager_.volumes()[i]);
        EXPECT_TRUE(std::regex_match(volumes_[i].second, form));
        guids.insert(volumes_[i].second);
    }
    EXPECT_EQ(guids.size(), 6U);
}

TEST_F(NameVolumesTest, SecondNaming_GivesOtherGuids) {
    std::vector<orvane::NamedVolume> again;
    ASSERT_TRUE(orvane::NameVolumes(manager_, volumes_));
    ASSERT_TRUE(orvane::NameVolumes(manager_, again));
    EXPECT_NE(volumes_[0].second, again[0].second);
}

TEST_F(NameVolumesTest, GuidThatCannotBeMade_FailsWithItsCode) {
    const support::StubImport import("CoCreateGuid", &::CoCreateGuid,
                                     [](GUID*) -> HRESULT { return static_cast<HRESULT>(0x80070005); });
    log_.Clear();
    EXPECT_FALSE(orvane::NameVolumes(manager_, volumes_));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(LogLine{support::kHostError, "CoCreateGuid call failed error: 2147942405"}));
}

TEST(NameVolumes, ManagerWithoutVolumes_NamesNothing) {
    std::vector<orvane::NamedVolume> volumes;
    EXPECT_TRUE(orvane::NameVolumes(bmr_common::VolumeManager(), volumes));
    EXPECT_TRUE(volumes.empty());
}

}  // namespace

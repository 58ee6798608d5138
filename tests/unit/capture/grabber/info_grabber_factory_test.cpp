#include "capture/grabber/info_grabber_factory.h"

#include "capture/grabber/info_grabber_v1.h"
#include "capture/grabber/info_grabber_v2.h"
#include "capture/grabber/info_grabber_v3.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using support::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Grabber>
void ExpectGrabber(std::uint32_t type) {
    const support::LoggerCapture log;
    const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(type);
    EXPECT_NE(dynamic_cast<Grabber*>(grabber.get()), nullptr);
    EXPECT_THAT(log.Messages(), IsEmpty());
}

TEST(CreateInfoGrabber, TypeZero_IsTheVersion1Grabber) {
    ExpectGrabber<orvane::InfoGrabberV1>(0);
}

TEST(CreateInfoGrabber, TypeOne_IsTheVersion2Grabber) {
    ExpectGrabber<orvane::InfoGrabberV2>(1);
}

TEST(CreateInfoGrabber, TypeTwo_IsTheVersion3Grabber) {
    ExpectGrabber<orvane::InfoGrabberV3>(2);
}

// Creating a grabber does not collect; the caller does that.
TEST(CreateInfoGrabber, NewGrabber_HoldsAnEmptyRecordOfItsOwn) {
    for (const std::uint32_t type : {0U, 1U}) {
        const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(type);
        const boost::shared_ptr<EnvInfo> record = grabber->GetEnvInfo();
        ASSERT_TRUE(record) << type;
        EXPECT_EQ(record->Version, 0U) << type;
        EXPECT_TRUE(record->VolumeTable.empty()) << type;
        EXPECT_TRUE(record->DiskDrives.empty()) << type;
        EXPECT_NE(record, orvane::CreateInfoGrabber(type)->GetEnvInfo()) << type;
    }
}

TEST(CreateInfoGrabber, NewGrabber_BelongsToTheCallerAlone) {
    for (const std::uint32_t type : {0U, 1U, 2U}) {
        const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(type);
        EXPECT_EQ(grabber.use_count(), 1) << type;
        EXPECT_NE(grabber, orvane::CreateInfoGrabber(type)) << type;
    }
}

class CreateInfoGrabberInvalid : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CreateInfoGrabberInvalid, Type_GivesNoGrabberAndOneLine) {
    const support::LoggerCapture log;
    EXPECT_EQ(orvane::CreateInfoGrabber(GetParam()), nullptr);
    EXPECT_THAT(log.Messages(),
                ElementsAre(LogLine{support::kHostError, "Invalid type of information grabber"}));
}

INSTANTIATE_TEST_SUITE_P(Types, CreateInfoGrabberInvalid, testing::Values(3U, 99U, 0xFFFFFFFFU));

}  // namespace

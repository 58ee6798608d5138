#include "capture/grabber/info_grabber_factory.h"

#include "capture/grabber/info_grabber_v3.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using support::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CreateInfoGrabber, TypeTwo_IsTheVersion3Grabber) {
    const support::LoggerCapture log;
    const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(2);
    EXPECT_NE(dynamic_cast<orvane::InfoGrabberV3*>(grabber.get()), nullptr);
    EXPECT_THAT(log.Messages(), IsEmpty());
}

TEST(CreateInfoGrabber, NewGrabber_BelongsToTheCallerAlone) {
    const orvane::InfoGrabberPtr grabber = orvane::CreateInfoGrabber(2);
    EXPECT_EQ(grabber.use_count(), 1);
    EXPECT_NE(grabber, orvane::CreateInfoGrabber(2));
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

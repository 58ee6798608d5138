#include "capture/grabber/info_grabber_factory.h"

#include "support/logger_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using support::Error;
using testing::ElementsAre;

class CreateInfoGrabberInvalid : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CreateInfoGrabberInvalid, Type_GivesNoGrabberAndOneLine) {
    const support::LoggerCapture log;
    EXPECT_EQ(orvane::CreateInfoGrabber(GetParam()), nullptr);
    EXPECT_THAT(log.Messages(), ElementsAre(Error("Invalid type of information grabber")));
}

INSTANTIATE_TEST_SUITE_P(Types, CreateInfoGrabberInvalid, testing::Values(3U, 99U, 0xFFFFFFFFU));

}  // namespace

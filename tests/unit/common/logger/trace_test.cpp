#include "common/logger/trace.h"

#include "support/logger_capture.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

namespace {

using support::LoggerCapture;
using testing::ElementsAre;
using testing::MatchesRegex;

TEST(Trace, Traced_BodyThatReturns_LogsEnteringAndLeavingAtTraceLevel) {
    LoggerCapture log;

    EXPECT_EQ(Traced(L"bmr_common::Volume::can_backup", [] { return 42; }), 42);

    EXPECT_THAT(log.all().size(), 2U);
    EXPECT_THAT(log.Lines(support::kHostTrace),
                ElementsAre(MatchesRegex("Entering function bmr_common::Volume::can_backup line \\d+"),
                            MatchesRegex("Leaving function bmr_common::Volume::can_backup line \\d+")))
        << log;
}

TEST(Trace, Traced_BodyWithoutResult_LogsTheSamePair) {
    LoggerCapture log;
    bool ran = false;

    Traced(L"orvane::f", [&] { ran = true; });

    EXPECT_TRUE(ran);
    EXPECT_THAT(log.Lines(support::kHostTrace),
                ElementsAre(MatchesRegex("Entering function orvane::f line \\d+"),
                            MatchesRegex("Leaving function orvane::f line \\d+")));
}

TEST(Trace, Traced_BodyLeftByAnException_LogsNoLeavingLine) {
    LoggerCapture log;

    EXPECT_THROW(Traced(L"orvane::f", []() -> int { throw std::runtime_error("out"); }), std::runtime_error);

    EXPECT_THAT(log.Lines(support::kHostTrace),
                ElementsAre(MatchesRegex("Entering function orvane::f line \\d+")));
}

TEST(Trace, Traced_ResultThatOnlyMoves_IsHandedThrough) {
    const LoggerCapture log;

    const std::unique_ptr<int> result = Traced(L"orvane::f", [] { return std::make_unique<int>(7); });

    ASSERT_NE(result, nullptr);
    EXPECT_EQ(*result, 7);
}

}  // namespace

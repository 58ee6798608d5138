#include "tools/orvane/refusal_parser.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

using host::LogMessage;
using host::RefusalParser;
using host::Verdict;

const LogMessage kEntering = {ORVANE_LEVEL_TRACE, "Entering function orvane::InfoGrabber::CanBackup line 90"};
const LogMessage kLeaving = {ORVANE_LEVEL_TRACE, "Leaving function orvane::InfoGrabber::CanBackup line 90"};
const LogMessage kRefusal = {
    ORVANE_LEVEL_ERROR,
    "CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information"};

std::optional<Verdict> ResultOf(std::uint32_t status, std::initializer_list<LogMessage> messages) {
    RefusalParser parser;
    for (const LogMessage& message : messages) {
        parser.Take(message);
    }
    return parser.Result(status);
}

TEST(RefusalParser, SizeThatIsTold_IsAYes) {
    EXPECT_EQ(
        ResultOf(ORVANE_BUFFER_TOO_SMALL, {{ORVANE_LEVEL_ERROR, "of the collection"}, kEntering, kLeaving}),
        (Verdict{true, {}}));
}

TEST(RefusalParser, RefusedVolume_HasTheReasonsWithoutTheirHeading) {
    EXPECT_EQ(ResultOf(ORVANE_FAILED,
                       {{ORVANE_LEVEL_ERROR, "of the collection"},
                        kEntering,
                        {ORVANE_LEVEL_TRACE, "VolumeManager::GetVolume: something"},
                        {ORVANE_LEVEL_ERROR, "Volume E: (Mounted as: E:\\) cannot be backed up because:"},
                        {ORVANE_LEVEL_ERROR, "one"},
                        {ORVANE_LEVEL_ERROR, "two"},
                        kLeaving,
                        kRefusal}),
              (Verdict{false, {"one", "two"}}));
}

TEST(RefusalParser, UnknownVolume_HasTheLineItself) {
    const LogMessage line = {ORVANE_LEVEL_ERROR,
                             "Backup cannot proceed. Failed to find any information about volume X:."};
    EXPECT_EQ(ResultOf(ORVANE_FAILED, {kEntering, line, kLeaving, kRefusal}), (Verdict{false, {line.text}}));
}

// The log changes a volume name that contains a percent sign. In this test nothing of the name is left.
TEST(RefusalParser, NameThatTheLogChanged_DoesNotMatter) {
    EXPECT_EQ(ResultOf(ORVANE_FAILED, {kEntering,
                                       {ORVANE_LEVEL_ERROR, "Volume CaptureSystemRestorePointInfo Exception"},
                                       {ORVANE_LEVEL_ERROR, "one"},
                                       kLeaving,
                                       kRefusal}),
              (Verdict{false, {"one"}}));
}

TEST(RefusalParser, HeadingThatTheLogCannotExpress_LeavesTheReasons) {
    EXPECT_EQ(ResultOf(ORVANE_FAILED, {kEntering,
                                       {ORVANE_LEVEL_WARNING, "ASSERTION FAILED, src/common/logger:79 !err"},
                                       {ORVANE_LEVEL_ERROR, "one"},
                                       kLeaving,
                                       kRefusal}),
              (Verdict{false, {"one"}}));
}

TEST(RefusalParser, NothingThatTheLogCanExpress_IsSaid) {
    EXPECT_EQ(ResultOf(ORVANE_FAILED, {kEntering,
                                       {ORVANE_LEVEL_WARNING, "ASSERTION FAILED, src/common/logger:79 !err"},
                                       kLeaving,
                                       kRefusal}),
              (Verdict{false, {"The reason has letters that this system's locale lacks."}}));
}

TEST(RefusalParser, OtherFailure_IsNoVerdict) {
    EXPECT_FALSE(ResultOf(
        ORVANE_FAILED,
        {{ORVANE_LEVEL_ERROR, "CaptureSystemRestorePointInfo Env Exception: Failed to obtain EnvInfo"}}));
    EXPECT_FALSE(ResultOf(ORVANE_FAILED, {kEntering, kLeaving}));
}

TEST(RefusalParser, SuccessWithoutABuffer_IsNoVerdict) {
    EXPECT_FALSE(ResultOf(ORVANE_SUCCESS, {kEntering, kLeaving}));
}

}  // namespace

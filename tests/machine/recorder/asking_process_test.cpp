#include "tools/orvane/asking_process.h"

#include <gtest/gtest.h>

namespace {

const std::wstring kProgram = std::filesystem::path(ORVANE_EXE_PATH).wstring();
const std::wstring kMachine =
    std::filesystem::path(ORVANE_SOURCE_DIR "/examples/machines/uefi-workstation").wstring();
constexpr DWORD kLong = 60'000;

std::vector<std::wstring> Answering() {
    return {kProgram, L"answer", L"--machine", kMachine};
}

// C:, D: and E: of the description.
constexpr std::uint64_t kDriveMask = 0b11100;

TEST(AskingProcess, DescribedMachine_AnswersOneQuestionAfterTheOther) {
    host::AskingProcess process(Answering(), kLong);
    EXPECT_EQ(process.Ask({"GetLogicalDrives", L"", 0, 0}).value, kDriveMask);
    const recorder::Answer missing = process.Ask({"CreateFileW", L"\\\\.\\PhysicalDrive9", 0, 0});
    EXPECT_EQ(missing.error, static_cast<std::uint32_t>(ERROR_FILE_NOT_FOUND));
}

TEST(AskingProcess, AnswerThatDoesNotComeInTime_IsNotedAndTheNextOneAskedAnew) {
    host::AskingProcess process(Answering(), 0);
    EXPECT_TRUE(process.Ask({"GetLogicalDrives", L"", 0, 0}).blocks);
    EXPECT_TRUE(process.Ask({"GetLogicalDrives", L"", 0, 0}).blocks);
}

TEST(AskingProcess, ChildThatEnds_IsNotedWithItsExitCode) {
    host::AskingProcess process({kProgram, L"no-command"}, kLong);
    const recorder::Answer answer = process.Ask({"GetLogicalDrives", L"", 0, 0});
    EXPECT_TRUE(answer.crashed);
    EXPECT_EQ(answer.error, 2U);
}

}  // namespace

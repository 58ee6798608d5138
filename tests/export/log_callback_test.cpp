#include "export/capture_fixture.h"
#include "support/debugger_capture.h"

#include <gmock/gmock.h>

#include <regex>

namespace {

using testing::IsEmpty;

using LogCallback = ExportTest;

TEST_F(LogCallback, NoCallback_SendsErrorsToTheDebugger) {
    library_.SetEventFunc(nullptr);
    const support::DebuggerCapture debugger(library_.module());
    library_.SetupSelectedVolumesList(nullptr, 0);
    ASSERT_EQ(debugger.lines().size(), 1U);
    EXPECT_TRUE(std::regex_match(debugger.lines().front(),
                                 std::wregex(LR"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d [AP]M )"
                                             LR"(SetupSelectedVolumesList: volume_guid_list is NULL\n)")));
}

TEST_F(LogCallback, NoCallback_DropsTheTrace) {
    library_.SetEventFunc(nullptr);
    const support::DebuggerCapture debugger(library_.module());
    library_.SetXmlFormat(3);
    EXPECT_THAT(debugger.lines(), IsEmpty());
}

TEST_F(LogCallback, Callback_KeepsTheDebuggerSilent) {
    const support::LogCapture log(library_.SetEventFunc);
    const support::DebuggerCapture debugger(library_.module());
    library_.SetupSelectedVolumesList(nullptr, 0);
    EXPECT_THAT(debugger.lines(), IsEmpty());
    EXPECT_EQ(log.Count(support::kHostError), 1U) << log;
}

class CaptureWithoutCallback : public CaptureTest {};

TEST_F(CaptureWithoutCallback, Capture_Works) {
    library_.SetEventFunc(nullptr);
    const support::DebuggerCapture debugger(library_.module());
    EXPECT_EQ(Capture(0).status, ORVANE_BUFFER_TOO_SMALL);
    library_.Select({L"unknown"});
    EXPECT_EQ(Capture(0).status, ORVANE_FAILED);
    EXPECT_THAT(
        debugger.lines().back(),
        testing::EndsWith(L"M CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed "
                          L"information\n"));
}

}  // namespace

// The thread's critical-error mode: during system calls, in the callback and after an export.

#include "export/capture_fixture.h"

#include <gmock/gmock.h>

#include <set>

namespace {

using testing::ElementsAre;

constexpr DWORD kHost = SEM_NOGPFAULTERRORBOX;
constexpr DWORD kQueries = SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS;

// The modes in which the callback was called.
std::set<DWORD>& CallbackModes() {
    static std::set<DWORD> modes;
    return modes;
}

void NoteMode(std::int32_t /*level*/, const char* /*text*/) {
    CallbackModes().insert(GetThreadErrorMode());
}

class ErrorMode : public CaptureTest {
protected:
    ErrorMode() {
        machine::FaultRule every_call;
        every_call.action = [this](machine::Answer&) { query_modes_.insert(GetThreadErrorMode()); };
        simulation().faults().Add(every_call);
        CallbackModes().clear();
        library_.SetEventFunc(&NoteMode);
        SetThreadErrorMode(kHost, &before_);
    }
    ~ErrorMode() override { SetThreadErrorMode(before_, nullptr); }

    template <class Body>
    void ExpectModes(const std::string& what, const Body& call) {
        query_modes_.clear();
        CallbackModes().clear();
        call();
        EXPECT_THAT(query_modes_, ElementsAre(kQueries)) << what;
        EXPECT_THAT(CallbackModes(), ElementsAre(kHost)) << what;
        EXPECT_EQ(GetThreadErrorMode(), kHost) << what;
    }

    std::set<DWORD> query_modes_;

private:
    DWORD before_ = 0;
};

TEST_F(ErrorMode, Capture_FailsCriticalErrorsOnlyInItsQueries) {
    for (const std::uint32_t format : {1U, 2U, 3U}) {
        library_.SetXmlFormat(format);
        ExpectModes("format " + std::to_string(format), [&] { Capture(0); });
        ExpectModes("format " + std::to_string(format), [&] { Capture(100000); });
    }
}

TEST_F(ErrorMode, CaptureThatIsRefused_RestoresTheMode) {
    library_.Select({L"unknown"});
    ExpectModes("refused", [&] { EXPECT_EQ(Capture(0).status, ORVANE_FAILED); });
}

TEST_F(ErrorMode, CaptureThatThrows_RestoresTheMode) {
    const auto refused = RefuseTheDocument();
    ExpectModes("exception", [&] { EXPECT_EQ(Capture(0).status, ORVANE_FAILED); });
}

TEST_F(ErrorMode, Dumps_FailCriticalErrorsOnlyInTheirQueries) {
    ExpectModes("WMIDumpInfo", [&] { library_.WMIDumpInfo(); });
    ExpectModes("DiskDumpInfo", [&] { library_.DiskDumpInfo(); });
    ExpectModes("VolumeDumpInfo", [&] { library_.VolumeDumpInfo(); });
    ExpectModes("FirmwareDumpInfo", [&] { library_.FirmwareDumpInfo(); });
}

TEST_F(ErrorMode, NoCallback_IsRestoredToo) {
    library_.SetEventFunc(nullptr);
    Capture(0);
    EXPECT_THAT(query_modes_, ElementsAre(kQueries));
    EXPECT_EQ(GetThreadErrorMode(), kHost);
}

TEST_F(ErrorMode, Settings_LeaveItAlone) {
    library_.SetXmlFormat(2);
    library_.Select({L"unknown"});
    EXPECT_THAT(CallbackModes(), ElementsAre(kHost));
    EXPECT_EQ(GetThreadErrorMode(), kHost);
}

}  // namespace

// The exports in a program that links the library statically, so that its allocations can be made to fail.

#include "machine/description/wmi_defaults.h"
#include "machine/session/session.h"
#include "orvane/orvane.h"
#include "support/allocation_failure.h"
#include "support/logger_capture.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class OutOfMemory : public testing::Test {
protected:
    ~OutOfMemory() override {
        SetupSelectedVolumesList(nullptr, 0);
        SetXmlFormat(2);
    }

    support::LoggerCapture log_;
};

TEST_F(OutOfMemory, SelectedVolumes_AreNoneAndALineSaysSo) {
    const std::wstring list =
        L"short" + std::wstring(1, L'\0') + std::wstring(20000, L'x') + std::wstring(2, L'\0');
    ASSERT_EQ(SetupSelectedVolumesList(list.data(), list.size()), 2);
    log_.Clear();
    {
        const support::AllocationFailure failure(20000);
        EXPECT_EQ(SetupSelectedVolumesList(list.data(), list.size()), 0);
        EXPECT_GT(failure.hits(), 0U);
    }
    EXPECT_TRUE(log_.Contains(support::kHostError, "SetupSelectedVolumesList Exception")) << log_;
    EXPECT_EQ(log_.Messages().size(), 1U) << log_;
}

// The mixed machine with so many texts that its document is larger than every buffer of a query.
machine::Description TalkativeMachine() {
    machine::Description machine = MixedMachine();
    machine::WmiValue options;
    options.type = VT_ARRAY | VT_BSTR;
    options.texts.assign(300, std::wstring(100, L'x'));
    machine::SetProperty(machine.wmi.at(machine::WmiClassKey(L"Win32_ComputerSystem")).instances.at(0),
                         {L"SystemStartupOptions", options});
    return machine;
}

TEST_F(OutOfMemory, Capture_FailsWithoutWriting) {
    machine::Session session(TalkativeMachine());
    session.simulation().calls().SetKept(false);  // recorded calls would take more memory than the document
    SetXmlFormat(3);
    std::uint32_t length = 0;
    ASSERT_EQ(CaptureSystemRestorePointInfo(nullptr, 0, &length), ORVANE_BUFFER_TOO_SMALL);
    std::string buffer(length, '#');
    std::uint32_t untouched = 0xAAAAAAAA;
    log_.Clear();
    {
        // The document's text is the largest allocation of a capture.
        const support::AllocationFailure failure(length);
        EXPECT_EQ(CaptureSystemRestorePointInfo(buffer.data(), length, &untouched), ORVANE_FAILED);
        EXPECT_GT(failure.hits(), 0U);
    }
    EXPECT_EQ(untouched, 0xAAAAAAAA);
    EXPECT_EQ(buffer, std::string(length, '#'));
    EXPECT_TRUE(log_.Contains(support::kHostError, "CaptureSystemRestorePointInfo Exception")) << log_;
    EXPECT_EQ(CaptureSystemRestorePointInfo(buffer.data(), length, nullptr), ORVANE_SUCCESS);
}

}  // namespace

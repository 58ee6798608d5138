#include "capture/grabber/info_grabber_v3.h"

#include "capture/grabber/grabber_exception.h"
#include "support/logger_capture.h"
#include "support/refused_imports.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

namespace {

using orvane::GrabberException;
using testing::ElementsAre;
using testing::StartsWith;

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;

class InfoGrabberV3Test : public testing::Test {
protected:
    machine::Session session_{MixedMachine()};
    support::LoggerCapture log_;
    boost::shared_ptr<EnvInfoV3> environment_ = boost::make_shared<EnvInfoV3>();
    orvane::InfoGrabberV3 grabber_{environment_};
};

// --- Checking.

TEST_F(InfoGrabberV3Test, CanBackup_ChecksAgainstItsOwnModel) {
    ASSERT_TRUE(grabber_.ObtainInformation());
    log_.Clear();
    EXPECT_TRUE(grabber_.CanBackup({kGoodVolume}, {{0, 1048576}}, false));
    EXPECT_FALSE(grabber_.CanBackup({kGoodVolume}, {{7, 0}}, false));
    EXPECT_FALSE(grabber_.CanBackup({kUnknownVolume}, {}, false));
    EXPECT_FALSE(grabber_.CanBackup({}, {}, true));
}

// --- Writing.

std::wstring FailureOf(orvane::InfoGrabberV3& grabber) {
    std::uint32_t length = kUntouched;
    std::uint32_t status = kUntouched;
    try {
        grabber.CaptureInfo(0, nullptr, &length, &status);
    } catch (const GrabberException& error) {
        return length == kUntouched && status == kUntouched ? error.message() : L"something was stored";
    }
    return L"no exception";
}

TEST_F(InfoGrabberV3Test, NoRecord_Throws) {
    orvane::InfoGrabberV3 grabber{boost::shared_ptr<EnvInfoV3>()};
    EXPECT_EQ(FailureOf(grabber), L"InfoGrabberV3::CaptureInfo: Cannot get BMREnvInfoV3");
}

struct ThreadCapture {
    orvane::InfoGrabberV3& grabber;
    std::wstring failure;
};

DWORD WINAPI CaptureOnThread(void* argument) {
    auto& capture = *static_cast<ThreadCapture*>(argument);
    capture.failure = FailureOf(capture.grabber);
    return 0;
}

TEST_F(InfoGrabberV3Test, CaptureInfo_LeftByAnException_LogsItsLeavingLine) {
    orvane::InfoGrabberV3 grabber{boost::shared_ptr<EnvInfoV3>()};
    EXPECT_NE(FailureOf(grabber), L"no exception");
    EXPECT_THAT(log_.Lines(support::kHostTrace),
                ElementsAre(StartsWith("Entering function orvane::InfoGrabberV3::CaptureInfo line "),
                            StartsWith("Leaving function orvane::InfoGrabberV3::CaptureInfo line ")));
}

TEST_F(InfoGrabberV3Test, ThreadWithoutCom_CannotWriteTheDocument) {
    ThreadCapture capture{grabber_, {}};
    HANDLE const thread = CreateThread(nullptr, 0, &CaptureOnThread, &capture, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(capture.failure, L"InfoGrabber::CaptureInfo: Failed to load XML configuration");
}

TEST_F(InfoGrabberV3Test, DocumentThatCannotBeConverted_IsDeliveredEmpty) {
    const auto refused = support::RefuseConversions();
    std::uint32_t length = kUntouched;
    std::uint32_t status = kUntouched;
    char buffer = '#';
    grabber_.CaptureInfo(0, &buffer, &length, &status);
    EXPECT_EQ(status, 0U);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(buffer, '#');
}

}  // namespace

// CaptureInfo, common to all grabbers: the document, its size, the caller's buffer.

#include "capture/grabber/grabber_exception.h"
#include "support/logger_capture.h"
#include "support/refused_imports.h"
#include "support/scoped_import.h"
#include "unit/capture/grabber/fake_grabber.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

namespace {

using orvane::GrabberException;
using testing::ElementsAre;

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;

class CaptureInfoTest : public testing::Test {
protected:
    CaptureInfoTest() { environment_->OS.Name = L"A <caption> & more"; }

    void Capture(char* buffer, std::uint32_t buffer_size) {
        FakeGrabber(environment_).CaptureInfo(buffer_size, buffer, &required_size_, &status_);
    }

    std::uint32_t Length() {
        Capture(nullptr, 0);
        return std::exchange(required_size_, kUntouched);
    }

    std::wstring MessageOfFailure(FakeGrabber& grabber) {
        std::vector<char> buffer(100000, '#');
        try {
            grabber.CaptureInfo(100000, buffer.data(), &required_size_, &status_);
        } catch (const GrabberException& error) {
            EXPECT_EQ(required_size_, kUntouched);
            EXPECT_EQ(status_, kUntouched);
            EXPECT_EQ(buffer, std::vector<char>(100000, '#'));
            return error.message();
        }
        return L"no exception";
    }

    boost::shared_ptr<EnvInfo> environment_ = boost::make_shared<EnvInfo>();
    std::uint32_t required_size_ = kUntouched;
    std::uint32_t status_ = kUntouched;
    support::LoggerCapture log_;
};

TEST_F(CaptureInfoTest, NoRecord_Throws) {
    FakeGrabber grabber;
    EXPECT_EQ(MessageOfFailure(grabber), L"InfoGrabber::CaptureInfo: Cannot get BMREnvInfo");
}

TEST_F(CaptureInfoTest, ComThatCannotBeInitialised_Throws) {
    const auto refused = support::RefuseCom();
    FakeGrabber grabber(environment_);
    EXPECT_EQ(MessageOfFailure(grabber), L"Failed to initialize COM");
    EXPECT_THAT(
        log_.Lines(support::kHostError),
        ElementsAre(
            "CoInitializeEx failed error=0x8007000e calling function orvane::InfoGrabber::CaptureInfo"));
}

HRESULT WINAPI RefuseToCreate(REFCLSID, IUnknown*, DWORD, REFIID, void** object) {
    *object = nullptr;
    return REGDB_E_CLASSNOTREG;
}

TEST_F(CaptureInfoTest, SystemWithoutTheDom_Throws) {
    const support::ScopedImport import("CoCreateInstance", &RefuseToCreate);
    FakeGrabber grabber(environment_);
    EXPECT_EQ(MessageOfFailure(grabber), L"InfoGrabber::CaptureInfo: Failed to load XML configuration");
}

TEST_F(CaptureInfoTest, DocumentThatCannotBeConverted_Throws) {
    const auto refused = support::RefuseConversions();
    FakeGrabber grabber(environment_);
    EXPECT_EQ(MessageOfFailure(grabber), L"InfoGrabber::CaptureInfo: XML is invalid");
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("ConvertWStrToStr: WideCharToMultiByte failed error = 87"));
}

int g_com_depth = 0;

HRESULT WINAPI CountInitialize(void*, DWORD) {
    ++g_com_depth;
    return S_FALSE;
}

void WINAPI CountUninitialize() {
    --g_com_depth;
}

TEST_F(CaptureInfoTest, ComScope_EndsOnEveryWayOut) {
    const std::uint32_t length = Length();
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    {
        const support::ScopedImport initialize("CoInitializeEx", &CountInitialize);
        const support::ScopedImport uninitialize("CoUninitialize", &CountUninitialize);
        std::string buffer(length, '#');
        Capture(buffer.data(), length);
        EXPECT_EQ(g_com_depth, 0);
        const support::ScopedImport create("CoCreateInstance", &RefuseToCreate);
        EXPECT_THROW(Capture(buffer.data(), length), GrabberException);
        EXPECT_EQ(g_com_depth, 0);
    }
    CoUninitialize();
}

}  // namespace

#include "common/platform/com_enabler.h"

#include "com_calls.h"
#include "support/logger_capture.h"
#include "support/own_process.h"

#include <gmock/gmock.h>

namespace {

using bmr_common::COMEnabler;
using support::Error;
using support::InOwnProcess;
using support::LoggerCapture;
using support::Trace;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kCaller[] = L"orvane::Caller";
constexpr auto kChangedMode = static_cast<HRESULT>(0x80010106);
constexpr auto kTooLate = static_cast<HRESULT>(0x80010119);

class ComEnabler : public testing::Test {
protected:
    ComCalls com_;
    LoggerCapture log_;
};

TEST_F(ComEnabler, InitializeCOM_Success_IsApartmentThreadedAndSilent) {
    COMEnabler com;

    EXPECT_TRUE(com.InitializeCOM(kCaller));

    EXPECT_THAT(com_.initialized, ElementsAre(2U));
    EXPECT_FALSE(com_.reserved_passed);
    EXPECT_THAT(log_.all(), IsEmpty()) << log_;
}

TEST_F(ComEnabler, InitializeCOM_ThreadHasComAlready_IsAccepted) {
    com_.initialize_result = S_FALSE;
    {
        COMEnabler com;
        EXPECT_TRUE(com.InitializeCOM(kCaller));
    }
    EXPECT_EQ(com_.uninitialized, 1);
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(ComEnabler, InitializeCOM_ThreadIsMultithreaded_IsAcceptedWithATraceLine) {
    com_.initialize_result = kChangedMode;
    {
        COMEnabler com;
        EXPECT_TRUE(com.InitializeCOM(kCaller));
        EXPECT_EQ(com_.uninitialized, 0);
    }
    EXPECT_EQ(com_.uninitialized, 1);  // the call is paired even after this error
    EXPECT_THAT(log_.all(), ElementsAre(Trace("CoInitializeEx error=RPC_E_CHANGED_MODE calling function "
                                              "orvane::Caller")));
}

class ComEnablerRefused : public ComEnabler,
                          public testing::WithParamInterface<std::pair<std::uint32_t, const char*>> {};

TEST_P(ComEnablerRefused, InitializeCOM_AnyOtherResult_FailsAndUndoesNothing) {
    com_.initialize_result = static_cast<HRESULT>(GetParam().first);
    {
        COMEnabler com;
        EXPECT_FALSE(com.InitializeCOM(kCaller));
    }
    EXPECT_EQ(com_.security_calls, 0);
    EXPECT_EQ(com_.uninitialized, 0);
    EXPECT_THAT(log_.all(),
                ElementsAre(Error("CoInitializeEx failed error=0x" + std::string(GetParam().second) +
                                  " calling function orvane::Caller")));
}

INSTANTIATE_TEST_SUITE_P(Results, ComEnablerRefused,
                         testing::Values(std::pair{0x8007000EU, "8007000e"},
                                         std::pair{0x80070057U, "80070057"}, std::pair{2U, "2"}));

// COM security is set once per process, so each of these tests needs a process that has not set it.

TEST_F(ComEnabler, InitializeCOM_FirstInTheProcess_SetsSecurityWithTheDefaults) {
    if (!InOwnProcess()) {
        return;
    }
    COMEnabler com;

    EXPECT_TRUE(com.InitializeCOM(kCaller));

    EXPECT_EQ(com_.security_calls, 1);
    EXPECT_FALSE(com_.security.pointers);
    EXPECT_EQ(com_.security.services, -1);
    EXPECT_EQ(com_.security.authentication, 0U);
    EXPECT_EQ(com_.security.impersonation, 3U);
    EXPECT_EQ(com_.security.capabilities, 0U);
}

TEST_F(ComEnabler, InitializeCOM_SecurityIsSet_IsNotSetAgain) {
    if (!InOwnProcess()) {
        return;
    }
    for (int i = 0; i < 3; ++i) {
        COMEnabler com;
        EXPECT_TRUE(com.InitializeCOM(kCaller));
    }
    EXPECT_EQ(com_.security_calls, 1);
    EXPECT_EQ(com_.uninitialized, 3);
}

TEST_F(ComEnabler, InitializeCOM_SecurityWasSetByTheHost_CountsAsSet) {
    if (!InOwnProcess()) {
        return;
    }
    com_.security_result = kTooLate;
    for (int i = 0; i < 2; ++i) {
        COMEnabler com;
        EXPECT_TRUE(com.InitializeCOM(kCaller));
    }
    EXPECT_EQ(com_.security_calls, 1);
    EXPECT_THAT(log_.all(), IsEmpty()) << log_;
}

TEST_F(ComEnabler, InitializeCOM_SecurityFails_UndoesTheInitializationAndFails) {
    if (!InOwnProcess()) {
        return;
    }
    com_.security_result = static_cast<HRESULT>(0x80070005);
    {
        COMEnabler com;
        EXPECT_FALSE(com.InitializeCOM(kCaller));
        EXPECT_EQ(com_.uninitialized, 1);
    }
    EXPECT_EQ(com_.uninitialized, 1);
    EXPECT_THAT(log_.all(), ElementsAre(Error("InitializeCOM: CoInitializeSecurity failed error=0x80070005 "
                                              "calling function bmr_common::COMEnabler::InitializeCOM")));
}

TEST_F(ComEnabler, InitializeCOM_SecurityFailedBefore_IsTriedAgain) {
    if (!InOwnProcess()) {
        return;
    }
    com_.security_result = static_cast<HRESULT>(0x80070005);
    EXPECT_FALSE(COMEnabler().InitializeCOM(kCaller));
    com_.security_result = S_OK;
    EXPECT_TRUE(COMEnabler().InitializeCOM(kCaller));
    EXPECT_TRUE(COMEnabler().InitializeCOM(kCaller));

    EXPECT_EQ(com_.security_calls, 2);
}

TEST(ComEnablerOnTheSystem, InitializeCOM_MultithreadedThread_IsAccepted) {
    LoggerCapture log;
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);  // the enabler balances this one
    {
        COMEnabler com;
        EXPECT_TRUE(com.InitializeCOM(kCaller));
    }
    EXPECT_EQ(log.Count(support::kHostTrace,
                        "CoInitializeEx error=RPC_E_CHANGED_MODE calling function orvane::Caller"),
              1U)
        << log;
    CoUninitialize();
}

}  // namespace

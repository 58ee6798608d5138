// Errors that make a capture fail, and how the export reports them.

#include "export/capture_fixture.h"
#include "support/refused_imports.h"
#include "support/scoped_import.h"

#include <gmock/gmock.h>
#include <objbase.h>

namespace {

using support::Error;
using testing::Contains;

constexpr char kNoEnvironment[] = "CaptureSystemRestorePointInfo Env Exception: Failed to obtain EnvInfo";
constexpr char kOtherException[] = "CaptureSystemRestorePointInfo Exception";

using CaptureFailures = CaptureTest;

// --- System calls that fail.

struct FailingCall {
    const char* call;
    std::uint32_t code;
    const wchar_t* object;
    const char* line;  // expected among the error lines
};

void PrintTo(const FailingCall& failing, std::ostream* out) {
    *out << failing.call << ' ' << failing.code;
}

// In formats 2 and 3.
class FailingCollection : public CaptureFailures,
                          public testing::WithParamInterface<std::tuple<std::uint32_t, FailingCall>> {};

TEST_P(FailingCollection, Capture_FailsWithItsLine) {
    const auto& [format, failing] = GetParam();
    library_.SetXmlFormat(format);
    simulation().faults().Fail(failing.call, failing.code, failing.object);
    ExpectFailure();
    EXPECT_THAT(log_.all(), Contains(Error(failing.line)));
    EXPECT_EQ(LastError(), kNoEnvironment);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, FailingCollection,
    testing::Combine(
        testing::Values(2U, 3U),
        testing::Values(FailingCall{"IClassFactory::CreateInstance", 0x80040154, L"",
                                    "CWmi::CWmi CoCreateInstance failed error 0x80040154"},
                        FailingCall{"IClientSecurity::SetBlanket", 0x80070005, L"",
                                    "CWmi::CWmi CoSetProxyBlanket failed error 0x80070005"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_OperatingSystem",
                                    "GetOSInfo wmi not initialized"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_DiskDrive",
                                    "DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized"},
                        FailingCall{"IWbemClassObject::Get", 0x80041001, L"Win32_DiskDrive.Index",
                                    "DeviceManager::ObtainPhysicalDrivesIndexes wmi.Get failed"},
                        FailingCall{"IWbemClassObject::Get", 0x80041001,
                                    L"Win32_OperatingSystem.SystemDevice",
                                    "GetOSInfo GetSystemDevice failed"},
                        FailingCall{"FindFirstVolumeW", 5, L"",
                                    "bmr_common::VolumeManager::InitializeWithCurrentVolumes failed to "
                                    "FindFirstVolume error=5"})));

TEST_F(CaptureFailures, FailedCapture_DoesNotHinderTheNext) {
    simulation().faults().Fail("FindFirstVolumeW", 5);
    ExpectFailure();
    simulation().faults().Clear();
    EXPECT_EQ(Capture(0).status, ORVANE_BUFFER_TOO_SMALL);
}

// --- Exceptions at the export boundary.

// Out of memory for the long texts of a document.
BSTR WINAPI AllocateNoText(const OLECHAR* /*text*/, UINT /*length*/) {
    return nullptr;
}

TEST_F(CaptureFailures, ComError_IsToldByItsMessage) {
    simulation().description().volumes.front().label.assign(200, L'x');
    const support::ScopedImport import("SysAllocStringLen", &AllocateNoText, library_.module());
    ExpectFailure();
    EXPECT_THAT(LastError(), testing::StartsWith("CaptureSystemRestorePointInfo COM Exception: "));
    EXPECT_GT(LastError().size(), std::string("CaptureSystemRestorePointInfo COM Exception: ").size());
}

TEST_F(CaptureFailures, DocumentThatCannotBeMade_IsAnUnnamedException) {
    const auto refused = RefuseTheDocument();
    ExpectFailure();
    EXPECT_EQ(LastError(), kOtherException);
}

TEST_F(CaptureFailures, IdentifiersThatCannotBeMade_FailTheCollection) {
    const auto refused = support::RefuseGuids(library_.module());
    for (const std::uint32_t format : {2U, 3U}) {
        library_.SetXmlFormat(format);
        ExpectFailure();
        EXPECT_THAT(log_.all(), Contains(Error("CoCreateGuid call failed error: 2147500037")));
        EXPECT_EQ(LastError(), kNoEnvironment);
    }
}

}  // namespace

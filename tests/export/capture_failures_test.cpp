// Errors that make a capture fail, and how the export reports them.

#include "export/capture_fixture.h"
#include "machine/description/wmi_defaults.h"
#include "support/scoped_import.h"
#include "support/xml_tree.h"

#include <gmock/gmock.h>
#include <objbase.h>

namespace {

using support::Error;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr char kNoEnvironment[] = "CaptureSystemRestorePointInfo Env Exception: Failed to obtain EnvInfo";
constexpr char kOtherException[] = "CaptureSystemRestorePointInfo Exception";

class CaptureFailures : public CaptureTest {
protected:
    std::vector<machine::WmiInstance>& Instances(const wchar_t* class_name) {
        return simulation().description().wmi[machine::WmiClassKey(class_name)].instances;
    }
};

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
                        FailingCall{"IWbemLocator::ConnectServer", 0x80070005, L"",
                                    "CWmi::CWmi ConnectServer failed error 0x80070005"},
                        FailingCall{"IClientSecurity::SetBlanket", 0x80070005, L"",
                                    "CWmi::CWmi CoSetProxyBlanket failed error 0x80070005"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_Processor",
                                    "GetProcessorInfo wmi not initialized"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_OperatingSystem",
                                    "GetOSInfo wmi not initialized"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_ComputerSystem",
                                    "GetComputerSystem wmi not initialized"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_BootConfiguration",
                                    "GetBootConfiguration wmi not initialized"},
                        FailingCall{"IWbemServices::ExecQuery", 0x80041003, L"Win32_DiskDrive",
                                    "DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized"},
                        FailingCall{"IEnumWbemClassObject::Next", 0x80041001, L"Win32_DiskDrive",
                                    "DeviceManager::ObtainPhysicalDrivesIndexes FindFirstObject failed"},
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

// Fails only for the document's class, with the error of a thread that did not initialise COM.
HRESULT WINAPI CreateAllButTheDocument(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                                       void** object) {
    constexpr CLSID kDocument = {
        0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
    if (IsEqualCLSID(clsid, kDocument)) {
        *object = nullptr;
        return CO_E_NOTINITIALIZED;
    }
    return CoCreateInstance(clsid, outer, context, iid, object);
}

TEST_F(CaptureFailures, DocumentThatCannotBeMade_IsAnUnnamedException) {
    const support::ScopedImport import("CoCreateInstance", &CreateAllButTheDocument, library_.module());
    ExpectFailure();
    EXPECT_EQ(LastError(), kOtherException);
}

HRESULT WINAPI RefuseGuid(GUID*) {
    return E_FAIL;
}

TEST_F(CaptureFailures, IdentifiersThatCannotBeMade_FailTheCollection) {
    const support::ScopedImport import("CoCreateGuid", &RefuseGuid, library_.module());
    for (const std::uint32_t format : {2U, 3U}) {
        library_.SetXmlFormat(format);
        ExpectFailure();
        EXPECT_THAT(log_.all(), Contains(Error("CoCreateGuid call failed error: 2147500037")));
        EXPECT_EQ(LastError(), kNoEnvironment);
    }
}

// --- A disk or volume whose queries fail is described as far as possible.

TEST_F(CaptureFailures, DiskThatCannotBeOpened_HasNoMoreThanItsNumber) {
    simulation().faults().Fail("CreateFileW", 5, L"\\\\.\\PhysicalDrive1");
    const XmlTree root = XmlTree::Of(Document());
    const XmlTree& disks = root.Child("BMREnvInfo").Child("DeviceInfo");
    EXPECT_EQ(disks.Child("NumberOfDisks").text, "2");
    EXPECT_EQ(disks.Child("Disk2"), Branch("Disk2", {Leaf("DiskId", "1"), Leaf("DiskSize", "0")}));
}

TEST_F(CaptureFailures, DiskThatOnlyWmiKnows_HasNoMoreThanItsNumber) {
    machine::WmiInstance ghost = Instances(L"Win32_DiskDrive").at(0);
    machine::WmiValue index;
    index.type = VT_I4;
    index.number = 7;
    machine::SetProperty(ghost, {L"Index", index});
    Instances(L"Win32_DiskDrive").push_back(ghost);
    const XmlTree root = XmlTree::Of(Document());
    EXPECT_EQ(root.Child("BMREnvInfo").Child("DeviceInfo").Child("Disk3"),
              Branch("Disk3", {Leaf("DiskId", "7"), Leaf("DiskSize", "0")}));
}

TEST_F(CaptureFailures, VolumeQueriesThatFail_LeaveTheirElementsOut) {
    simulation().faults().Fail("GetVolumeInformationW", 21);
    simulation().faults().Fail("DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", 1);
    const XmlTree root = XmlTree::Of(Document());
    const XmlTree& volumes = root.Child("BMREnvInfo").Child("VolumeInfo");
    EXPECT_THAT(Lines(volumes), Not(HasSubstr("SerialNumber: ")));
    EXPECT_THAT(Lines(root), Not(HasSubstr("NumberOfDiskExtents: ")));
    EXPECT_EQ(volumes.Child("NumberOfVolumes").text, "7");
}

}  // namespace

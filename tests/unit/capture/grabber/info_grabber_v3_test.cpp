#include "capture/grabber/info_grabber_v3.h"

#include "capture/grabber/grabber_exception.h"
#include "machine/description/wmi_defaults.h"
#include "support/logger_capture.h"
#include "support/scoped_import.h"
#include "support/xml_tree.h"
#include "unit/capture/grabber/mixed_machine.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>

namespace {

using orvane::GrabberException;
using testing::ElementsAre;
using testing::StartsWith;

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;
constexpr char kTooSmall[] = "InfoGrabber::CaptureInfo: output buffer too small";

class InfoGrabberV3Test : public testing::Test {
protected:
    std::string Document() {
        std::uint32_t length = 0;
        std::uint32_t status = 0;
        grabber_.CaptureInfo(0, nullptr, &length, &status);
        std::string document(length, '#');
        grabber_.CaptureInfo(length, document.data(), &length, &status);
        EXPECT_EQ(status, 0U);
        return document;
    }

    std::vector<machine::WmiInstance>& Instances(const wchar_t* class_name) {
        return session_.simulation().description().wmi[machine::WmiClassKey(class_name)].instances;
    }

    machine::Session session_{MixedMachine()};
    support::LoggerCapture log_;
    boost::shared_ptr<EnvInfoV3> environment_ = boost::make_shared<EnvInfoV3>();
    orvane::InfoGrabberV3 grabber_{environment_};
};

// --- Collecting.

TEST_F(InfoGrabberV3Test, ObtainInformation_FillsTheRecord) {
    EXPECT_TRUE(grabber_.ObtainInformation());
    EXPECT_EQ(environment_->Version, 7U);
    EXPECT_EQ(environment_->DllVersion, L"9.50.6732.");
    EXPECT_FALSE(environment_->Processor.Manufacturer.empty());
    EXPECT_EQ(environment_->device_manager.disks().size(), 3U);
    EXPECT_EQ(environment_->volume_manager.volumes().size(), 6U);
}

TEST_F(InfoGrabberV3Test, ObtainInformation_TellsTheVolumesWhichTheyAre) {
    machine::WmiInstance& os = Instances(L"Win32_OperatingSystem").at(0);
    machine::WmiValue device;
    device.type = VT_BSTR;
    device.text = L"\\Device\\HarddiskVolume1";
    machine::SetProperty(os, {L"SystemDevice", device});
    device.text = L"\\Device\\HarddiskVolume2";
    machine::SetProperty(os, {L"BootDevice", device});
    ASSERT_TRUE(grabber_.ObtainInformation());
    const auto system = environment_->volume_manager.GetVolume(L"\\Device\\HarddiskVolume1");
    const auto boot = environment_->volume_manager.GetVolume(L"\\Device\\HarddiskVolume2");
    EXPECT_TRUE(system->is_system_volume());
    EXPECT_FALSE(system->is_boot_volume());
    EXPECT_TRUE(boot->is_boot_volume());
    EXPECT_FALSE(boot->is_system_volume());
}

TEST_F(InfoGrabberV3Test, ObtainInformation_IsTraced) {
    EXPECT_TRUE(grabber_.ObtainInformation());
    const std::vector<std::string> trace = log_.Lines(support::kHostTrace);
    EXPECT_THAT(trace.front(),
                StartsWith("Entering function orvane::InfoGrabberV3::ObtainInformation line "));
    EXPECT_THAT(trace.back(), StartsWith("Leaving function orvane::InfoGrabberV3::ObtainInformation line "));
}

TEST_F(InfoGrabberV3Test, ObtainInformation_LeavesNothingOpen) {
    EXPECT_TRUE(grabber_.ObtainInformation());
    EXPECT_EQ(session_.simulation().open_handles(), 0U);
    EXPECT_EQ(session_.simulation().live_objects(), 0U);
}

TEST_F(InfoGrabberV3Test, SectionThatFails_FailsBeforeTheDisks) {
    Instances(L"Win32_BootConfiguration").clear();
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_EQ(session_.simulation().calls().Count("CreateFileW"), 0U);
    EXPECT_THAT(log_.Lines(support::kHostTrace).back(),
                StartsWith("Leaving function orvane::InfoGrabberV3::ObtainInformation"));
}

TEST_F(InfoGrabberV3Test, NoDiskClass_FailsBeforeTheVolumes) {
    Instances(L"Win32_DiskDrive").clear();
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_TRUE(log_.Contains(support::kHostError,
                              "DeviceManager::ObtainPhysicalDrivesIndexes FindFirstObject failed"))
        << log_;
    EXPECT_EQ(session_.simulation().calls().Count("FindFirstVolumeW"), 0U);
}

TEST_F(InfoGrabberV3Test, VolumesThatCannotBeFound_FailTheCollection) {
    session_.simulation().faults().Fail("FindFirstVolumeW", 5);
    EXPECT_FALSE(grabber_.ObtainInformation());
}

HRESULT WINAPI RefuseCom(void*, DWORD) {
    return E_OUTOFMEMORY;
}

TEST_F(InfoGrabberV3Test, ComThatCannotBeInitialised_FailsTheCollection) {
    const support::ScopedImport import("CoInitializeEx", &RefuseCom);
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("CoInitializeEx failed error=0x8007000e calling function "
                            "GetWMIInfo",
                            "GetWMIInfo: Cannot initialize COM"));
}

HRESULT WINAPI RefuseGuid(GUID*) {
    return static_cast<HRESULT>(0x80070005);
}

TEST_F(InfoGrabberV3Test, IdentifiersThatCannotBeMade_FailTheCollection) {
    const support::ScopedImport import("CoCreateGuid", &RefuseGuid);
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_EQ(log_.Lines(support::kHostError).back(), "CoCreateGuid call failed error: 2147942405");
}

int g_guids_made = 0;

HRESULT WINAPI CountGuid(GUID* guid) {
    *guid = GUID{};
    ++g_guids_made;
    return S_OK;
}

TEST_F(InfoGrabberV3Test, Identifiers_AreMadeForEveryVolumeAndDropped) {
    g_guids_made = 0;
    const support::ScopedImport import("CoCreateGuid", &CountGuid);
    EXPECT_TRUE(grabber_.ObtainInformation());
    EXPECT_EQ(g_guids_made, 6);
    EXPECT_EQ(Document().find("{00000000-0000-0000-0000-000000000000}"), std::string::npos);
}

// --- Checking.

TEST_F(InfoGrabberV3Test, CanBackup_ChecksAgainstItsOwnModel) {
    ASSERT_TRUE(grabber_.ObtainInformation());
    log_.Clear();
    EXPECT_TRUE(grabber_.CanBackup({kGoodVolume}, {{0, 1048576}}, false));
    EXPECT_FALSE(grabber_.CanBackup({kGoodVolume}, {{7, 0}}, false));
    EXPECT_FALSE(grabber_.CanBackup({kUnknownVolume}, {}, false));
    EXPECT_FALSE(grabber_.CanBackup({}, {}, true));
}

TEST_F(InfoGrabberV3Test, GetEnvInfo_IsEmpty) {
    EXPECT_EQ(grabber_.GetEnvInfo(), nullptr);
    EXPECT_TRUE(grabber_.ObtainInformation());
    EXPECT_EQ(grabber_.GetEnvInfo(), nullptr);
}

TEST_F(InfoGrabberV3Test, DumpVolumeInfo_IsTheManagersDumpBetweenTraceLines) {
    ASSERT_TRUE(grabber_.ObtainInformation());
    log_.Clear();
    grabber_.DumpVolumeInfo();
    const std::vector<std::string> trace = log_.Lines(support::kHostTrace);
    EXPECT_THAT(trace.front(), StartsWith("Entering function orvane::InfoGrabberV3::DumpVolumeInfo line "));
    EXPECT_THAT(trace.back(), StartsWith("Leaving function orvane::InfoGrabberV3::DumpVolumeInfo line "));
    EXPECT_TRUE(log_.Contains(support::kHostInformation, "[Volume Information]")) << log_;
    EXPECT_TRUE(log_.Contains(support::kHostInformation, "Number of volumes: 6")) << log_;
}

// --- Writing.

TEST_F(InfoGrabberV3Test, CaptureInfo_WritesTheModelAndNoTables) {
    ASSERT_TRUE(grabber_.ObtainInformation());
    const XmlTree root = XmlTree::Of(Document());
    const XmlTree& document = root.Child("BMREnvInfo");
    EXPECT_THAT(document.Names(), ElementsAre("Version", "DllVersion", "Processor", "ComputerSystem",
                                              "BootConfiguration", "OS", "DeviceInfo", "VolumeInfo"));
    EXPECT_EQ(document.Child("Version").text, "7");
    EXPECT_EQ(document.Child("DllVersion").text, "9.50.6732.");
}

TEST_F(InfoGrabberV3Test, CaptureInfo_KeepsTheSizeProtocol) {
    std::uint32_t length = kUntouched;
    std::uint32_t status = kUntouched;
    grabber_.CaptureInfo(0, nullptr, &length, &status);
    ASSERT_EQ(status, 2U);
    EXPECT_TRUE(log_.Contains(support::kHostTrace, kTooSmall)) << log_;

    std::string buffer(length + 1, '#');
    std::uint32_t again = kUntouched;
    grabber_.CaptureInfo(length - 1, buffer.data(), &again, &status);
    EXPECT_EQ(status, 2U);
    EXPECT_EQ(again, length);
    EXPECT_EQ(buffer, std::string(length + 1, '#'));

    grabber_.CaptureInfo(length, buffer.data(), nullptr, &status);
    EXPECT_EQ(status, 0U);
    EXPECT_THAT(buffer, testing::EndsWith("</root>#"));
}

TEST_F(InfoGrabberV3Test, CaptureInfo_IsTracedWithEitherStatus) {
    for (const std::uint32_t size : {0U, 1000000U}) {
        log_.Clear();
        std::string buffer(size, '#');
        std::uint32_t status = kUntouched;
        grabber_.CaptureInfo(size, buffer.data(), nullptr, &status);
        const std::vector<std::string> trace = log_.Lines(support::kHostTrace);
        EXPECT_THAT(trace.front(), StartsWith("Entering function orvane::InfoGrabberV3::CaptureInfo line "));
        EXPECT_THAT(trace.back(), StartsWith("Leaving function orvane::InfoGrabberV3::CaptureInfo line "));
    }
}

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

TEST_F(InfoGrabberV3Test, CaptureInfo_LeftByAnException_LogsItsLeavingLine) {
    orvane::InfoGrabberV3 grabber{boost::shared_ptr<EnvInfoV3>()};
    EXPECT_NE(FailureOf(grabber), L"no exception");
    EXPECT_THAT(log_.Lines(support::kHostTrace),
                ElementsAre(StartsWith("Entering function orvane::InfoGrabberV3::CaptureInfo line "),
                            StartsWith("Leaving function orvane::InfoGrabberV3::CaptureInfo line ")));
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

TEST_F(InfoGrabberV3Test, ThreadWithoutCom_CannotWriteTheDocument) {
    ThreadCapture capture{grabber_, {}};
    HANDLE const thread = CreateThread(nullptr, 0, &CaptureOnThread, &capture, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(capture.failure, L"InfoGrabber::CaptureInfo: Failed to load XML configuration");
}

int WINAPI RefuseToConvert(UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
}

TEST_F(InfoGrabberV3Test, DocumentThatCannotBeConverted_IsDeliveredEmpty) {
    const support::ScopedImport import("WideCharToMultiByte", &RefuseToConvert);
    std::uint32_t length = kUntouched;
    std::uint32_t status = kUntouched;
    char buffer = '#';
    grabber_.CaptureInfo(0, &buffer, &length, &status);
    EXPECT_EQ(status, 0U);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(buffer, '#');
}

}  // namespace

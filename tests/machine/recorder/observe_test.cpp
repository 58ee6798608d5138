#include "machine/recorder/observe/observe.h"

#include "machine/description/text.h"
#include "machine/recorder/observe/answer_texts.h"
#include "machine/recorder/observe/ask.h"
#include "machine/session/session.h"
#include "machine/simulation/redirect.h"

#include <gmock/gmock.h>
#include <oleauto.h>

#include <algorithm>

namespace {

using testing::ElementsAre;

recorder::Observations ObserveDescribed(const char* json) {
    machine::Session session(machine::ParseDescription(json, "test"));
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    recorder::Observations observations = recorder::Observe(
        [&](const recorder::Question& question) { return recorder::Ask(functions, question); },
        [](std::size_t, const recorder::Question&) {});
    EXPECT_EQ(session.simulation().open_handles(), 0U);
    EXPECT_EQ(session.simulation().live_objects(), 0U);
    return observations;
}

constexpr const char* kOneDisk = R"({
    "disks": [{"index": 3, "size": "1 GiB", "signature": 7,
               "partitions": [{"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"}]}],
    "volumes": [{"guid": "{00000000-1111-2222-3333-444444444444}", "partition": {"disk": 3, "number": 1},
                 "mountPoints": ["C:\\", "C:\\Folder\\"], "label": "Letter"},
                {"guid": null, "device": "\\Device\\CdRom0", "driveType": "cdrom", "media": false}]
})";

TEST(Observe, Disk_IsAskedByItsNumberAndItsDevice) {
    const auto observations = ObserveDescribed(kOneDisk);
    EXPECT_THAT(observations.ObjectsOf("DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX"),
                ElementsAre(L"\\\\.\\PhysicalDrive3", L"\\\\?\\GLOBALROOT\\Device\\Harddisk3\\DR3"));
}

TEST(Observe, Volumes_AreAskedByDeviceNameAndLetter) {
    const auto observations = ObserveDescribed(kOneDisk);
    EXPECT_THAT(
        observations.ObjectsOf("GetDriveTypeW"),
        ElementsAre(L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1\\", L"\\\\?\\GLOBALROOT\\Device\\CdRom0\\",
                    L"\\\\?\\Volume{00000000-1111-2222-3333-444444444444}\\", L"C:\\"));
    EXPECT_THAT(observations.ObjectsOf("GetVolumeNameForVolumeMountPointW"),
                ElementsAre(L"C:\\", L"C:\\Folder\\"));
}

// 48 bytes, and 144 for each of the four entries of an MBR.
TEST(Observe, LayoutOfADisk_IsAskedWithTheSizesThatMatter) {
    const auto observations = ObserveDescribed(kOneDisk);
    std::vector<std::pair<std::uint32_t, std::uint32_t>> answers;
    for (const auto* observation :
         observations.Find("DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX", L"\\\\.\\PhysicalDrive3")) {
        if (observation->question.access == GENERIC_READ) {
            answers.emplace_back(observation->question.size, observation->answer.error);
        }
    }
    EXPECT_THAT(answers,
                ElementsAre(std::pair(4, 122), std::pair(48, 122), std::pair(512, 122), std::pair(768, 0),
                            std::pair(65536, 0), std::pair(623, 122), std::pair(624, 0)));
}

TEST(Observe, FailedQuestion_IsAnAnswer) {
    const auto observations = ObserveDescribed(kOneDisk);
    const auto* drive = observations.Best("GetVolumeInformationW", L"\\\\?\\GLOBALROOT\\Device\\CdRom0\\");
    ASSERT_NE(drive, nullptr);
    EXPECT_EQ(drive->answer.error, static_cast<std::uint32_t>(ERROR_NOT_READY));
}

TEST(Observe, DiskThatCannotBeOpened_IsNotAskedFurther) {
    const auto observations =
        ObserveDescribed(R"({"disks": [{"index": 0, "size": "1 GiB", "errors": {"CreateFileW": 5}}]})");
    EXPECT_THAT(observations.ObjectsOf("CreateFileW"),
                ElementsAre(L"\\\\.\\PhysicalDrive0", L"\\\\?\\GLOBALROOT\\Device\\Harddisk0\\DR0"));
    EXPECT_TRUE(observations.ObjectsOf("DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO").empty());
}

TEST(Observe, PropertiesOfAClass_KeepTheirTypes) {
    const auto observations = ObserveDescribed(kOneDisk);
    const auto* drives = observations.Best("IWbemServices::ExecQuery", L"Win32_DiskDrive");
    ASSERT_NE(drives, nullptr);
    const auto& parts = drives->answer.parts;
    const auto index =
        std::find_if(parts.begin(), parts.end(), [](const auto& part) { return part.name == L"Index"; });
    ASSERT_NE(index, parts.end());
    EXPECT_EQ(index->type, L"VT_I4");
    EXPECT_EQ(index->value, 3U);
}

TEST(Observe, XmlComponent_ShowsWhatItWrites) {
    const auto observations = ObserveDescribed(kOneDisk);
    const auto* written = observations.Best("IXMLDOMNode::get_xml", L"Msxml2.DOMDocument.3.0");
    ASSERT_NE(written, nullptr);
    ASSERT_TRUE(written->answer.succeeded());
    const std::wstring text = machine::WideText(written->answer.bytes);
    EXPECT_NE(text.find(L"<text>&lt;&amp;"), std::wstring::npos);
    EXPECT_NE(text.find(L"\x00E4\x20AC</text>"), std::wstring::npos);
}

TEST(Observe, MachineWithoutXmlComponent_SaysWhy) {
    const auto observations = ObserveDescribed(R"({"xmlComponent": false})");
    const auto* written = observations.Best("IXMLDOMNode::get_xml", L"Msxml2.DOMDocument.3.0");
    ASSERT_NE(written, nullptr);
    EXPECT_EQ(written->answer.step, "CoCreateInstance");
    EXPECT_EQ(written->answer.error, 0x80040154U);
}

// A list of texts by its value, of numbers by itself.
void LieAboutElements(machine::Answer& answer) {
    if (answer.variant != nullptr) {
        VariantClear(answer.variant);
        answer.variant->parray = SafeArrayCreateVector(VT_I8, 0, 2);
        void* data = nullptr;
        SafeArrayAccessData(answer.variant->parray, &data);
        std::fill_n(static_cast<std::uint64_t*>(data), 2, 0x10);
        SafeArrayUnaccessData(answer.variant->parray);
        answer.variant->vt = VT_ARRAY | VT_BSTR;
    }
}

TEST(Observe, PropertyWithOtherElementsThanItSays_HasNone) {
    machine::Session session(machine::ParseDescription(kOneDisk, "test"));
    session.simulation().faults().Alter("IWbemClassObject::Get", &LieAboutElements);
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    const auto drives = recorder::Ask(functions, {"IWbemServices::ExecQuery", L"Win32_DiskDrive", 0, 0});
    ASSERT_FALSE(drives.parts.empty());
    EXPECT_EQ(drives.parts.front().type, L"VT_ARRAY|VT_BSTR");
    EXPECT_TRUE(drives.parts.front().bytes.empty());
}

TEST(Observe, ControlsThatRead_AreTheOnlyOnesSent) {
    machine::Session session(machine::ParseDescription(kOneDisk, "test"));
    const recorder::SystemFunctions functions(&machine::SimulatedProcAddress);
    recorder::Observe([&](const recorder::Question& question) { return recorder::Ask(functions, question); },
                      [](std::size_t, const recorder::Question&) {});
    for (const char* writing : {"IOCTL_DISK_SET_DRIVE_LAYOUT_EX", "IOCTL_DISK_CREATE_DISK",
                                "IOCTL_DISK_DELETE_DRIVE_LAYOUT", "IOCTL_DISK_UPDATE_PROPERTIES"}) {
        EXPECT_EQ(session.simulation().calls().Count(std::string("DeviceIoControl:") + writing), 0U);
    }
    EXPECT_EQ(session.simulation().calls().Count("WriteFile"), 0U);
}

}  // namespace

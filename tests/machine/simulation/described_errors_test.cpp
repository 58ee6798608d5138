#include "machine/description/control_codes.h"
#include "machine/simulation/simulated_functions.h"
#include "machine/wmi_support.h"

#include <gtest/gtest.h>

#include <string>

namespace machine_test {
namespace {

constexpr auto kBlockedCom = static_cast<HRESULT>(0x80070079);
constexpr auto kBlockedNative = static_cast<NTSTATUS>(0xC00000B5);

TEST(BlockedCode, IsError121InTheCodesOfTheFamily) {
    EXPECT_EQ(machine::BlockedCode("DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO"), 121u);
    EXPECT_EQ(machine::BlockedCode("GetVolumeInformationW"), 121u);
    EXPECT_EQ(machine::BlockedCode("ZwQueryDirectoryObject"), 0xC00000B5u);
    EXPECT_EQ(machine::BlockedCode("IEnumWbemClassObject::Next"), 0x80070079u);
}

TEST(BlockingCall, InErrors_BlocksThatCallAlone) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "errors": {
        "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY": {"blocks": true}}}]})");
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, 24).error, DWORD{ERROR_SEM_TIMEOUT});
    EXPECT_TRUE(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 512).done);
    machine.kernel.CloseHandle(handle);
    EXPECT_EQ(machine.simulation.described_errors_met(), 1u);
}

TEST(BlockingDisk, BlocksWhatReachesIt) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "blocks": true}]})");
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SEM_TIMEOUT});
    wchar_t target[64];
    EXPECT_GT(machine.kernel.QueryDosDeviceW(L"PhysicalDrive0", target, 64), 0u);
}

TEST(BlockingVolume, BlocksWhatReachesItButKeepsItsNames) {
    Machine machine(R"({"volumes": [{"extents": [], "mountPoints": ["D:\\"], "blocks": true,
                                     "errors": {"CreateFileW": 5}}]})");
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\D:"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED}) << "the error of the call comes first";
    EXPECT_FALSE(machine.kernel.GetDiskFreeSpaceExW(L"D:\\", nullptr, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SEM_TIMEOUT});
    EXPECT_FALSE(
        machine.kernel.GetVolumeInformationW(L"D:\\", nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SEM_TIMEOUT});
    wchar_t name[64];
    EXPECT_TRUE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"D:\\", name, 64));
    EXPECT_EQ(machine.kernel.GetDriveTypeW(L"D:\\"), UINT{DRIVE_FIXED});
}

TEST(BlockingDirectory, CannotBeOpened) {
    Machine machine(R"({"directories": {"\\Device": {"blocks": true}}})");
    const auto open =
        Bound<decltype(&machine::simulated::ZwOpenDirectoryObject)>(L"ntdll.dll", "ZwOpenDirectoryObject");
    std::wstring text = L"\\Device";
    UNICODE_STRING name{};
    name.Length = static_cast<USHORT>(text.size() * 2);
    name.Buffer = text.data();
    OBJECT_ATTRIBUTES attributes{};
    attributes.Length = sizeof(attributes);
    attributes.ObjectName = &name;
    HANDLE directory = nullptr;
    EXPECT_EQ(open(&directory, 1, &attributes), kBlockedNative);
}

TEST_F(Wmi, BlockingClass_IsNotQueried) {
    Start(R"({"wmi": {"Win32_Processor": {"blocks": true}}})");
    EXPECT_EQ(Query(services_, enumerator_, L"Select * from Win32_Processor"), kBlockedCom);
    EXPECT_EQ(Query(services_, enumerator_, L"Select * from Win32_OperatingSystem"), S_OK);
}

TEST(DosDeviceErrors, HitTheQueryOfThatName) {
    Machine machine(R"({"dosDevices": {
        "P:": {"target": "\\Device\\Sample", "errors": {"QueryDosDeviceW": 1117}},
        "Q:": {"target": "\\Device\\Sample", "errors": {"QueryDosDeviceW": {"blocks": true}}},
        "R:": {"target": {"utf16": "0041"}}}})");
    wchar_t target[64];
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"p:", target, 64), 0u);
    EXPECT_EQ(GetLastError(), 1117u);
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"Q:", target, 64), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SEM_TIMEOUT});
    EXPECT_GT(machine.kernel.QueryDosDeviceW(L"R:", target, 64), 0u);
    EXPECT_STREQ(target, L"A");
}

TEST(Blocks, OnlyTrueOfACallThatCanFail_IsAccepted) {
    for (const char* json :
         {R"({"disks": [{"index": 0, "size": 1, "errors": {"CreateFileW": {"blocks": false}}}]})",
          R"({"disks": [{"index": 0, "size": 1, "errors": {"CreateFileW": {}}}]})",
          R"({"disks": [{"index": 0, "size": 1, "errors": {"ZwClose": {"blocks": true}}}]})",
          R"({"disks": [{"index": 0, "size": 1, "blocks": 121}]})", R"({"blocks": true})",
          R"({"dosDevices": {"X:": {"target": "", "errors": {"CreateFileW": 5}}}})",
          R"({"dosDevices": {"X:": {"target": "", "blocks": true}}})"}) {
        EXPECT_THROW(Parse(json), machine::DescriptionError) << json;
    }
}

}  // namespace
}  // namespace machine_test

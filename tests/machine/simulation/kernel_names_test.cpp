#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace machine_test {
namespace {

const wchar_t kSecond[] = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\";
const wchar_t kThird[] = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000003}\\";

std::wstring Chars(const wchar_t* text, std::size_t count) {
    return {text, count};
}

// Of a list that an empty text ends.
std::vector<std::wstring> TextsOf(const wchar_t* list) {
    std::vector<std::wstring> texts;
    for (; *list != L'\0'; list += texts.back().size() + 1) {
        texts.emplace_back(list);
    }
    return texts;
}

TEST(VolumePathNames, ExactlyFitting_IsCopiedWithItsLength) {
    Machine machine(SmallMachine());
    const std::wstring expected(L"D:\\\0C:\\Data\\Archive\\\0", 4 + 17 + 1);
    wchar_t names[64];
    DWORD needed = 0;
    ASSERT_TRUE(machine.kernel.GetVolumePathNamesForVolumeNameW(kThird, names, 22, &needed));
    EXPECT_EQ(needed, 22u);
    EXPECT_EQ(Chars(names, 22), expected);
}

TEST(VolumePathNames, OneCharacterShort_Is234WithTheNeededLength) {
    Machine machine(SmallMachine());
    wchar_t names[64] = L"untouched";
    DWORD needed = 0;
    EXPECT_FALSE(machine.kernel.GetVolumePathNamesForVolumeNameW(kThird, names, 21, &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(needed, 22u);
    EXPECT_STREQ(names, L"untouched");
    EXPECT_FALSE(machine.kernel.GetVolumePathNamesForVolumeNameW(kThird, nullptr, 0, &needed));
    EXPECT_EQ(needed, 22u);
}

TEST(VolumePathNames, VolumeWithoutMountPoints_IsOneTerminator) {
    Machine machine(SmallMachine());
    wchar_t names[4] = L"abc";
    DWORD needed = 0;
    ASSERT_TRUE(machine.kernel.GetVolumePathNamesForVolumeNameW(
        L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\", names, 4, &needed));
    EXPECT_EQ(needed, 1u);
    EXPECT_EQ(names[0], L'\0');
}

TEST(VolumePathNames, NameWithoutBackslash_IsInvalid) {
    Machine machine(SmallMachine());
    wchar_t names[64];
    DWORD needed = 0;
    EXPECT_FALSE(machine.kernel.GetVolumePathNamesForVolumeNameW(
        L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}", names, 64, &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_NAME});
    EXPECT_FALSE(machine.kernel.GetVolumePathNamesForVolumeNameW(L"C:\\", names, 64, &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_NAME});
}

TEST(VolumePathNames, UnknownVolume_IsNotFound) {
    Machine machine(SmallMachine());
    wchar_t names[64];
    DWORD needed = 0;
    EXPECT_FALSE(machine.kernel.GetVolumePathNamesForVolumeNameW(
        L"\\\\?\\Volume{00000000-0000-0000-0000-0000000000ff}\\", names, 64, &needed));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(QueryDosDevice, Drive_GivesTargetAndBothTerminators) {
    Machine machine(SmallMachine());
    wchar_t target[64];
    const std::wstring expected = L"\\Device\\HarddiskVolume2";
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"c:", target, 64), expected.size() + 2);
    EXPECT_EQ(Chars(target, expected.size() + 2), expected + std::wstring(2, L'\0'));
}

TEST(QueryDosDevice, ExactlyFitting_SucceedsOneShortIs122) {
    Machine machine(SmallMachine());
    wchar_t target[64];
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"C:", target, 25), 25u);
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"C:", target, 24), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

struct DosCase {
    const wchar_t* name;
    const wchar_t* target;  // null if the call fails
    DWORD error;
};

class QueryDosDeviceOf : public testing::TestWithParam<DosCase> {};

TEST_P(QueryDosDeviceOf, Name_GivesWhatTheSystemGives) {
    Machine machine(SmallMachine());
    wchar_t target[128] = L"";
    const DWORD length = machine.kernel.QueryDosDeviceW(GetParam().name, target, 128);
    if (GetParam().target != nullptr) {
        EXPECT_STREQ(target, GetParam().target);
        EXPECT_EQ(length, std::wstring(GetParam().target).size() + 2);
    } else {
        EXPECT_EQ(length, 0u);
        EXPECT_EQ(GetLastError(), GetParam().error);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Names, QueryDosDeviceOf,
    testing::Values(DosCase{L"Volume{00000000-0000-0000-0000-000000000003}", L"\\Device\\HarddiskVolume3", 0},
                    DosCase{L"PhysicalDrive3", L"\\Device\\Harddisk3\\DR3", 0},
                    DosCase{L"HarddiskVolume1", L"\\Device\\HarddiskVolume1", 0},
                    DosCase{L"E:", L"\\Device\\CdRom0", 0}, DosCase{L"Z:", nullptr, ERROR_FILE_NOT_FOUND},
                    DosCase{L"", nullptr, ERROR_FILE_NOT_FOUND},
                    DosCase{L"C:\\", nullptr, ERROR_INVALID_NAME},
                    DosCase{kSecond, nullptr, ERROR_BAD_PATHNAME}));

TEST(QueryDosDevice, NullName_ListsAllNames) {
    Machine machine(SmallMachine());
    std::vector<wchar_t> names(4096);
    const DWORD length = machine.kernel.QueryDosDeviceW(nullptr, names.data(), 4096);
    ASSERT_GT(length, 0u);
    const std::vector<std::wstring> listed = TextsOf(names.data());
    for (const wchar_t* expected :
         {L"C:", L"D:", L"E:", L"PhysicalDrive0", L"PhysicalDrive3", L"HarddiskVolume3",
          L"Volume{00000000-0000-0000-0000-000000000004}", L"NUL"}) {
        EXPECT_NE(std::find(listed.begin(), listed.end(), expected), listed.end()) << expected;
    }
    std::size_t total = 1;
    for (const std::wstring& name : listed) {
        total += name.size() + 1;
    }
    EXPECT_EQ(length, total);
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(nullptr, names.data(), length - 1), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST(QueryDosDevice, DescribedDevice_IsListedBesideTheDerivedOnes) {
    Machine machine(R"({"dosDevices": {"X:": "\\??\\C:\\Folder"}})");
    wchar_t target[64];
    EXPECT_NE(machine.kernel.QueryDosDeviceW(L"X:", target, 64), 0u);
    EXPECT_STREQ(target, L"\\??\\C:\\Folder");
}

std::vector<std::wstring> ListedBy(Machine& machine) {
    std::vector<wchar_t> names(4096);
    machine.kernel.QueryDosDeviceW(nullptr, names.data(), 4096);
    return TextsOf(names.data());
}

TEST(QueryDosDevice, DescribedTarget_ReplacesTheDerivedOne) {
    Machine machine(R"({"dosDevices": {"MAILSLOT": "\\Device\\MailSlot", "GLOBALROOT": ""}})");
    wchar_t target[64];
    EXPECT_NE(machine.kernel.QueryDosDeviceW(L"MAILSLOT", target, 64), 0u);
    EXPECT_STREQ(target, L"\\Device\\MailSlot");
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"GLOBALROOT", target, 64), 2u);
}

TEST(QueryDosDevice, DescribedLinkDirectory_IsWhatIsListed) {
    Machine machine(
        R"({"directories": {"\\GLOBAL??": {"entries": ["C:", {"name": "X", "type": "Device"}, "A"]}}})");
    EXPECT_EQ(ListedBy(machine), (std::vector<std::wstring>{L"C:", L"A"}));
}

TEST(QueryDosDevice, DescribedNames_AreListedInTheirOrder) {
    Machine machine(R"({"dosNames": ["B", "A"], "dosDevices": {"A": "\\Device\\A"}})");
    EXPECT_EQ(ListedBy(machine), (std::vector<std::wstring>{L"B", L"A"}));
}

TEST(DiskDevice, DescribedDevice_IsTheTargetOfTheDisk) {
    Machine machine(R"({"disks": [{"index": 1, "size": "1 GiB", "device": "\\Device\\Harddisk1\\DR5"}]})");
    wchar_t target[64];
    EXPECT_NE(machine.kernel.QueryDosDeviceW(L"PhysicalDrive1", target, 64), 0u);
    EXPECT_STREQ(target, L"\\Device\\Harddisk1\\DR5");
    const HANDLE handle = machine.kernel.Open(L"\\\\?\\GLOBALROOT\\Device\\Harddisk1\\DR5");
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    machine.kernel.CloseHandle(handle);
}

TEST(LogicalDrives, AreTheMountedRoots) {
    Machine machine(SmallMachine());
    EXPECT_EQ(machine.kernel.GetLogicalDrives(), DWORD{1U << 2 | 1U << 3 | 1U << 4});
    EXPECT_EQ(machine.simulation.calls().Count("GetLogicalDrives"), 1u);
}

TEST(VolumeNameForMountPoint, DriveAndFolder_GiveTheVolume) {
    Machine machine(SmallMachine());
    wchar_t name[64];
    ASSERT_TRUE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"C:\\", name, 50));
    EXPECT_STREQ(name, kSecond);
    ASSERT_TRUE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"c:\\data\\archive\\", name, 50));
    EXPECT_STREQ(name, kThird);
    ASSERT_TRUE(machine.kernel.GetVolumeNameForVolumeMountPointW(kThird, name, 50));
    EXPECT_STREQ(name, kThird);
}

TEST(VolumeNameForMountPoint, Failures_HaveTheirOwnErrors) {
    Machine machine(SmallMachine());
    wchar_t name[64];
    EXPECT_FALSE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"C:\\", name, 49));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_FALSE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"C:", name, 64));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_NAME});
    EXPECT_FALSE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"Z:\\", name, 64));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"C:\\Data\\", name, 64));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_A_REPARSE_POINT});
}

TEST(VolumeNameForMountPoint, VolumeWithoutGuid_IsNotFound) {
    Machine machine(R"({"volumes": [{"guid": null, "mountPoints": ["F:\\"], "extents": []}]})");
    wchar_t name[64];
    EXPECT_FALSE(machine.kernel.GetVolumeNameForVolumeMountPointW(L"F:\\", name, 64));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(machine.kernel.QueryDosDeviceW(L"F:", name, 64), 25u);
}

TEST(VolumePathName, Path_GivesTheDeepestMountPoint) {
    Machine machine(SmallMachine());
    wchar_t root[64];
    ASSERT_TRUE(machine.kernel.GetVolumePathNameW(L"C:\\Data\\Archive\\2024\\a.txt", root, 64));
    EXPECT_STREQ(root, L"C:\\Data\\Archive\\");
    ASSERT_TRUE(machine.kernel.GetVolumePathNameW(L"C:\\Data\\other", root, 64));
    EXPECT_STREQ(root, L"C:\\");
    EXPECT_FALSE(machine.kernel.GetVolumePathNameW(L"C:\\Data", root, 3));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_FALSE(machine.kernel.GetVolumePathNameW(L"Z:\\x", root, 64));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
}  // namespace machine_test

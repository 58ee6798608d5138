#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace machine_test {
namespace {

const wchar_t kFirst[] = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\";

std::vector<std::wstring> AllVolumes(const Kernel& kernel, DWORD* last_error) {
    std::vector<std::wstring> names;
    wchar_t name[64];
    const HANDLE search = kernel.FindFirstVolumeW(name, 64);
    if (search == INVALID_HANDLE_VALUE) {
        *last_error = GetLastError();
        return names;
    }
    do {
        names.emplace_back(name);
    } while (kernel.FindNextVolumeW(search, name, 64));
    *last_error = GetLastError();
    EXPECT_TRUE(kernel.FindVolumeClose(search));
    return names;
}

TEST(VolumeSearch, ListsAllAndEndsWith18) {
    Machine machine(SmallMachine());
    DWORD error = 0;
    const std::vector<std::wstring> names = AllVolumes(machine.kernel, &error);
    ASSERT_EQ(names.size(), 4u);
    EXPECT_EQ(names[0], kFirst);
    EXPECT_EQ(error, DWORD{ERROR_NO_MORE_FILES});
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

TEST(VolumeSearch, NoVolumes_FailsAtOnce) {
    Machine machine("{}");
    DWORD error = 0;
    EXPECT_TRUE(AllVolumes(machine.kernel, &error).empty());
    EXPECT_EQ(error, DWORD{ERROR_NO_MORE_FILES});
}

TEST(VolumeSearch, BufferForTheNameAndItsTerminator_IsTheLeast) {
    Machine machine(SmallMachine());
    wchar_t name[64];
    EXPECT_EQ(machine.kernel.FindFirstVolumeW(name, 49), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    const HANDLE search = machine.kernel.FindFirstVolumeW(name, 50);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(name, kFirst);
    EXPECT_FALSE(machine.kernel.FindNextVolumeW(search, name, 10));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_TRUE(machine.kernel.FindVolumeClose(search));
}

TEST(VolumeSearch, ClosedSearch_IsInvalid) {
    Machine machine(SmallMachine());
    wchar_t name[64];
    const HANDLE search = machine.kernel.FindFirstVolumeW(name, 64);
    EXPECT_TRUE(machine.kernel.FindVolumeClose(search));
    EXPECT_FALSE(machine.kernel.FindNextVolumeW(search, name, 64));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(machine.kernel.FindVolumeClose(search));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(machine.simulation.stale_handle_uses(), 2u);
}

TEST(VolumeSearch, AliasesAndHiddenVolumes_AreListedAsDescribed) {
    Machine machine(R"({"volumes": [
        {"guid": "{00000000-0000-0000-0000-000000000001}", "extents": [], "enumerated": false},
        {"guid": "{00000000-0000-0000-0000-000000000002}", "extents": [],
         "aliases": ["{00000000-0000-0000-0000-00000000000a}",
                     {"guid": "{00000000-0000-0000-0000-00000000000b}", "enumerated": false}]},
        {"guid": null, "extents": []}]})");
    DWORD error = 0;
    const std::vector<std::wstring> names = AllVolumes(machine.kernel, &error);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0], L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\");
    EXPECT_EQ(names[1], L"\\\\?\\Volume{00000000-0000-0000-0000-00000000000a}\\");
    wchar_t target[64];
    EXPECT_NE(machine.kernel.QueryDosDeviceW(L"Volume{00000000-0000-0000-0000-00000000000b}", target, 64),
              0u);
    EXPECT_STREQ(target, L"\\Device\\HarddiskVolume2");
}

struct TypeCase {
    const wchar_t* root;
    UINT type;
};

class DriveTypeOf : public testing::TestWithParam<TypeCase> {};

TEST_P(DriveTypeOf, Root_GivesWhatTheSystemGives) {
    Machine machine(SmallMachine());
    EXPECT_EQ(machine.kernel.GetDriveTypeW(GetParam().root), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(
    Roots, DriveTypeOf,
    testing::Values(TypeCase{L"C:\\", DRIVE_FIXED}, TypeCase{L"C:", DRIVE_FIXED},
                    TypeCase{L"E:\\", DRIVE_CDROM}, TypeCase{L"C:\\Data\\Archive\\", DRIVE_FIXED},
                    TypeCase{kFirst, DRIVE_FIXED},
                    TypeCase{L"\\\\?\\Volume{00000000-0000-0000-0000-000000000004}\\", DRIVE_CDROM},
                    TypeCase{L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1\\", DRIVE_FIXED},
                    TypeCase{L"Z:\\", DRIVE_NO_ROOT_DIR}, TypeCase{L"C:\\Data\\", DRIVE_NO_ROOT_DIR},
                    TypeCase{L"\\\\?\\Volume{00000000-0000-0000-0000-0000000000ff}\\", DRIVE_NO_ROOT_DIR},
                    TypeCase{L"\\\\.\\PhysicalDrive0", DRIVE_NO_ROOT_DIR}, TypeCase{L"", DRIVE_NO_ROOT_DIR},
                    TypeCase{nullptr, DRIVE_FIXED}, TypeCase{L"\\", DRIVE_FIXED}));

TEST(VolumeInformation, EveryRootForm_GivesTheSameVolume) {
    Machine machine(SmallMachine());
    for (const wchar_t* root :
         {L"C:\\", L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
          L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume2\\", static_cast<const wchar_t*>(nullptr)}) {
        wchar_t label[32] = L"";
        wchar_t file_system[32] = L"";
        DWORD serial = 0;
        DWORD longest = 0;
        DWORD flags = 0;
        ASSERT_TRUE(machine.kernel.GetVolumeInformationW(root, label, 32, &serial, &longest, &flags,
                                                         file_system, 32));
        EXPECT_STREQ(label, L"Windows");
        EXPECT_STREQ(file_system, L"NTFS");
        EXPECT_EQ(serial, 0xCAFE0001u);
        EXPECT_EQ(longest, 255u);
        EXPECT_NE(flags, 0u);
    }
}

TEST(VolumeInformation, LabelThatDoesNotFit_Is234) {
    Machine machine(SmallMachine());
    wchar_t label[16] = L"";
    EXPECT_FALSE(
        machine.kernel.GetVolumeInformationW(L"C:\\", label, 7, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});
    EXPECT_TRUE(
        machine.kernel.GetVolumeInformationW(L"C:\\", label, 8, nullptr, nullptr, nullptr, nullptr, 0));
}

struct FailureCase {
    const wchar_t* root;
    DWORD information_error;
    DWORD space_error;
};

class VolumeDetailsOf : public testing::TestWithParam<FailureCase> {};

TEST_P(VolumeDetailsOf, Root_FailsAsTheSystemDoes) {
    Machine machine(R"({"volumes": [
        {"guid": "{00000000-0000-0000-0000-000000000001}", "extents": [], "fileSystem": "", "mountPoints": ["R:\\"]},
        {"guid": "{00000000-0000-0000-0000-000000000002}", "extents": [], "mountPoints": ["C:\\"]},
        {"guid": "{00000000-0000-0000-0000-000000000004}", "driveType": "cdrom", "mountPoints": ["E:\\"],
         "media": false}]})");
    SetLastError(0);
    machine.kernel.GetVolumeInformationW(GetParam().root, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(GetLastError(), GetParam().information_error);
    SetLastError(0);
    machine.kernel.GetDiskFreeSpaceW(GetParam().root, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(GetLastError(), GetParam().space_error);
    SetLastError(0);
    machine.kernel.GetDiskFreeSpaceExW(GetParam().root, nullptr, nullptr, nullptr);
    EXPECT_EQ(GetLastError(), GetParam().space_error);
}

INSTANTIATE_TEST_SUITE_P(Roots, VolumeDetailsOf,
                         testing::Values(FailureCase{L"R:\\", ERROR_UNRECOGNIZED_VOLUME,
                                                     ERROR_UNRECOGNIZED_VOLUME},
                                         FailureCase{L"E:\\", ERROR_NOT_READY, ERROR_NOT_READY},
                                         FailureCase{L"Z:\\", ERROR_PATH_NOT_FOUND, ERROR_PATH_NOT_FOUND},
                                         FailureCase{L"C:", ERROR_INVALID_NAME, 0},
                                         FailureCase{L"C:\\Windows", ERROR_INVALID_NAME, 0},
                                         FailureCase{L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}",
                                                     ERROR_INVALID_NAME, ERROR_DIRECTORY}));

TEST(DiskFreeSpace, Volume_GivesItsClusters) {
    Machine machine(SmallMachine());
    DWORD sectors = 0;
    DWORD bytes = 0;
    DWORD free = 0;
    DWORD total = 0;
    ASSERT_TRUE(machine.kernel.GetDiskFreeSpaceW(L"C:\\", &sectors, &bytes, &free, &total));
    EXPECT_EQ(sectors, 8u);
    EXPECT_EQ(bytes, 512u);
    EXPECT_EQ(free, static_cast<DWORD>((10ULL << 30) / 4096));
    EXPECT_EQ(total, static_cast<DWORD>(((40ULL << 30) - 512) / 4096));
    ULARGE_INTEGER caller{};
    ULARGE_INTEGER all{};
    ULARGE_INTEGER left{};
    ASSERT_TRUE(machine.kernel.GetDiskFreeSpaceExW(L"C:\\", &caller, &all, &left));
    EXPECT_EQ(all.QuadPart, static_cast<ULONGLONG>(total) * 4096);
    EXPECT_EQ(left.QuadPart, 10ULL << 30);
    EXPECT_EQ(caller.QuadPart, left.QuadPart);
}

TEST(DiskFreeSpace, MoreThan32BitsOfClusters_IsClipped) {
    Machine machine(R"({"volumes": [{"extents": [], "length": "100 TiB", "mountPoints": ["C:\\"],
                        "totalClusters": 26843545600, "freeClusters": 5}]})");
    DWORD total = 0;
    DWORD free = 0;
    DWORD ignored = 0;
    ASSERT_TRUE(machine.kernel.GetDiskFreeSpaceW(L"C:\\", &ignored, &ignored, &free, &total));
    EXPECT_EQ(total, 0xFFFFFFFFu);
    EXPECT_EQ(free, 5u);
}

}  // namespace
}  // namespace machine_test

#include "machine/test_machine.h"

#include <gtest/gtest.h>

namespace machine_test {
namespace {

struct OpenCase {
    const wchar_t* path;
    bool opens;
    DWORD error;
};

class CreateFileOf : public testing::TestWithParam<OpenCase> {};

TEST_P(CreateFileOf, Path_GivesWhatTheSystemGives) {
    Machine machine(SmallMachine());
    SetLastError(0);
    const HANDLE handle = machine.kernel.Open(GetParam().path);
    EXPECT_EQ(handle != INVALID_HANDLE_VALUE, GetParam().opens);
    EXPECT_EQ(GetLastError(), GetParam().error);
    EXPECT_EQ(machine.simulation.open_handles(), GetParam().opens ? 1u : 0u);
    if (GetParam().opens) {
        EXPECT_TRUE(machine.kernel.CloseHandle(handle));
    }
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, CreateFileOf,
    testing::Values(
        OpenCase{L"\\\\.\\PhysicalDrive0", true, 0}, OpenCase{L"\\\\.\\PHYSICALDRIVE3", true, 0},
        OpenCase{L"\\\\?\\PhysicalDrive0", true, 0},
        OpenCase{L"\\\\.\\PhysicalDrive1", false, ERROR_FILE_NOT_FOUND},
        OpenCase{L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume2", true, 0},
        OpenCase{L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume9", false, ERROR_FILE_NOT_FOUND},
        OpenCase{L"\\\\?\\Volume{00000000-0000-0000-0000-000000000003}", true, 0},
        OpenCase{L"\\\\?\\Volume{00000000-0000-0000-0000-000000000009}", false, ERROR_FILE_NOT_FOUND},
        OpenCase{L"\\\\.\\C:", true, 0}, OpenCase{L"\\\\.\\c:", true, 0},
        OpenCase{L"\\\\.\\Z:", false, ERROR_FILE_NOT_FOUND},
        OpenCase{L"C:\\pagefile.sys", false, ERROR_FILE_NOT_FOUND},
        OpenCase{L"C:\\", false, ERROR_PATH_NOT_FOUND},
        OpenCase{L"\\\\?\\Volume{00000000-0000-0000-0000-000000000003}\\", false, ERROR_PATH_NOT_FOUND},
        OpenCase{L"", false, ERROR_PATH_NOT_FOUND}, OpenCase{nullptr, false, ERROR_PATH_NOT_FOUND}));

TEST(CreateFile, OpenForWritingError_RefusesWritingOnly) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "signature": 7, "openForWritingError": 5,
                                   "partitions": [{"offset": "1 MiB", "size": "9 MiB", "type": "ntfs"}]}],
                        "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"],
                                     "openForWritingError": 19}]})");
    const std::pair<const wchar_t*, DWORD> refused[] = {{L"\\\\.\\PhysicalDrive0", ERROR_ACCESS_DENIED},
                                                        {L"\\\\.\\C:", ERROR_WRITE_PROTECT}};
    for (const auto& [path, error] : refused) {
        EXPECT_EQ(machine.kernel.Open(path, GENERIC_READ | GENERIC_WRITE), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), error);
        const HANDLE handle = machine.kernel.Open(path, GENERIC_READ);
        EXPECT_NE(handle, INVALID_HANDLE_VALUE);
        EXPECT_TRUE(machine.kernel.CloseHandle(handle));
    }
}

TEST(CreateFile, RootWithBackupSemantics_OpensADirectoryWithoutVolumeControls) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.CreateFileW(L"C:\\", GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                     OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_LENGTH_INFO, 8).error, DWORD{ERROR_INVALID_FUNCTION});
    EXPECT_TRUE(machine.kernel.CloseHandle(handle));
}

TEST(CreateFile, CreatingADisposition_IsRefused) {
    Machine machine(SmallMachine());
    EXPECT_EQ(machine.kernel.CreateFileW(L"\\\\.\\PhysicalDrive0", 0, 0, nullptr, CREATE_NEW, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_EXISTS});
}

TEST(CreateFile, DescribedError_IsGivenForThatDiskOnly) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "errors": {"CreateFileW": 5}},
                                  {"index": 1, "size": "1 GiB"}]})");
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    const HANDLE other = machine.kernel.Open(L"\\\\.\\PhysicalDrive1");
    EXPECT_NE(other, INVALID_HANDLE_VALUE);
    machine.kernel.CloseHandle(other);
}

TEST(CloseHandle, Twice_FailsAndIsNoticed) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    EXPECT_TRUE(machine.kernel.CloseHandle(handle));
    EXPECT_EQ(machine.simulation.stale_handle_uses(), 0u);
    EXPECT_FALSE(machine.kernel.CloseHandle(handle));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(machine.simulation.stale_handle_uses(), 1u);
}

TEST(CloseHandle, RealHandle_ReachesTheSystem) {
    Machine machine(SmallMachine());
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ASSERT_NE(event, nullptr);
    EXPECT_TRUE(machine.kernel.CloseHandle(event));
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(event, &flags));
    EXPECT_EQ(machine.simulation.calls().Count("CloseHandle"), 0u);
}

TEST(CloseHandle, VolumeSearch_IsNoFile) {
    Machine machine(SmallMachine());
    wchar_t name[64];
    const HANDLE search = machine.kernel.FindFirstVolumeW(name, 64);
    EXPECT_FALSE(machine.kernel.CloseHandle(search));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(machine.simulation.open_handles(), 1u);
    EXPECT_TRUE(machine.kernel.FindVolumeClose(search));
}

TEST(CloseHandle, MadeToFail_ClosesNevertheless) {
    Machine machine(SmallMachine());
    machine.simulation.faults().Fail("CloseHandle", 6);
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    EXPECT_FALSE(machine.kernel.CloseHandle(handle));
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

TEST(DeviceIoControl, ClosedHandle_IsInvalid) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    machine.kernel.CloseHandle(handle);
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, 24).error,
              DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(machine.simulation.stale_handle_uses(), 1u);
}

TEST(DeviceIoControl, DiskThatVanished_IsNoDevice) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    machine.simulation.description().disks.clear();
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, 24).error, DWORD{433});
    EXPECT_EQ(machine.kernel.Open(L"\\\\.\\PhysicalDrive0"), INVALID_HANDLE_VALUE);
    machine.kernel.CloseHandle(handle);
}

TEST(DeviceIoControl, WithoutPlaceForTheLength_Fails) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    unsigned char buffer[24];
    EXPECT_FALSE(machine.kernel.DeviceIoControl(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0, buffer, 24,
                                                nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOACCESS});
    machine.kernel.CloseHandle(handle);
}

TEST(FlushFileBuffers, HandleWithoutWriteAccess_IsDenied) {
    Machine machine(SmallMachine());
    const HANDLE reading = machine.kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ);
    EXPECT_FALSE(machine.kernel.FlushFileBuffers(reading));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    machine.kernel.CloseHandle(reading);
    const HANDLE writing = machine.kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ | GENERIC_WRITE);
    EXPECT_TRUE(machine.kernel.FlushFileBuffers(writing));
    machine.kernel.CloseHandle(writing);
}

TEST(FlushFileBuffers, DescribedError_IsGiven) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "errors": {"FlushFileBuffers": 1}}]})");
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_WRITE);
    EXPECT_FALSE(machine.kernel.FlushFileBuffers(handle));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
    machine.kernel.CloseHandle(handle);
}

TEST(WriteFile, DiskWithoutImage_IsNotSupported) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_WRITE);
    const unsigned char sector[512] = {};
    DWORD written = 1;
    EXPECT_FALSE(machine.kernel.WriteFile(handle, sector, 512, &written, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
    EXPECT_EQ(written, 0u);
    machine.kernel.CloseHandle(handle);
}

}  // namespace
}  // namespace machine_test

#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <string>

namespace machine_test {
namespace {

class VolumeControls : public testing::Test {
protected:
    static std::string Spanned() {
        return R"({"disks": [{"index": 0, "size": "10 GiB"}, {"index": 1, "size": "10 GiB"}],
                   "volumes": [
                    {"guid": "{00000000-0000-0000-0000-000000000001}", "mountPoints": ["S:\\"], "extents": [
                     {"disk": 0, "offset": "1 MiB", "length": "2 GiB"},
                     {"disk": 1, "offset": "3 MiB", "length": "1 GiB"},
                     {"disk": 0, "offset": "5 GiB", "length": "1 GiB"}]},
                    {"extents": [{"disk": 0, "offset": 0, "length": 512}, {"disk": 1, "offset": 0, "length": 512}],
                     "mountPoints": ["T:\\"], "extentsShortError": 122, "extentsShortAnswer": "none"},
                    {"extents": [], "mountPoints": ["U:\\"]}]})";
    }
};

TEST_F(VolumeControls, Extents_ComeInOrder) {
    Machine machine(Spanned());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\S:");
    const auto answer = machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 512);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 8u + 3u * 24u);
    EXPECT_EQ(answer.As<VOLUME_DISK_EXTENTS>().NumberOfDiskExtents, 3u);
    EXPECT_EQ(answer.As<DISK_EXTENT>(8).DiskNumber, 0u);
    EXPECT_EQ(answer.As<DISK_EXTENT>(32).DiskNumber, 1u);
    EXPECT_EQ(answer.As<DISK_EXTENT>(32).StartingOffset.QuadPart, 3LL << 20);
    EXPECT_EQ(answer.As<DISK_EXTENT>(32).ExtentLength.QuadPart, 1LL << 30);
    EXPECT_EQ(answer.As<DISK_EXTENT>(56).StartingOffset.QuadPart, 5LL << 30);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, ExtentsBelow32Bytes_IsAnInvalidParameter) {
    Machine machine(Spanned());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\S:");
    const auto answer = machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 31);
    EXPECT_FALSE(answer.done);
    EXPECT_EQ(answer.error, DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(answer.returned, 0u);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, ExtentsTooSmall_GivesTheCountAndTheFirstWithError234) {
    Machine machine(Spanned());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\S:");
    for (const DWORD size : {32u, 56u, 79u}) {
        const auto answer = machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, size);
        EXPECT_FALSE(answer.done) << size;
        EXPECT_EQ(answer.error, DWORD{ERROR_MORE_DATA}) << size;
        EXPECT_EQ(answer.returned, 32u) << size;
        EXPECT_EQ(answer.As<VOLUME_DISK_EXTENTS>().NumberOfDiskExtents, 3u) << size;
        EXPECT_EQ(answer.As<DISK_EXTENT>(8).ExtentLength.QuadPart, 2LL << 30) << size;
        EXPECT_EQ(answer.bytes.back(), size == 32 ? 0x00 : 0xAA) << size;
    }
    EXPECT_TRUE(machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 80).done);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, ExtentsTooSmall_DescribedAsFitting_GivesAllThatFit) {
    Machine machine(Spanned());
    machine.simulation.description().volumes[0].short_extents = machine::ShortExtents::kFitting;
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\S:");
    const auto answer = machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 79);
    EXPECT_EQ(answer.error, DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(answer.returned, 8u + 2u * 24u);
    EXPECT_EQ(answer.As<DISK_EXTENT>(32).DiskNumber, 1u);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, ExtentsTooSmall_DescribedErrorAndNone_AreGivenInstead) {
    Machine machine(Spanned());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\T:");
    const auto answer = machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 40);
    EXPECT_EQ(answer.error, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(answer.returned, 0u);
    EXPECT_EQ(answer.bytes.front(), 0xAA);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, NoExtents_CountsNone) {
    Machine machine(Spanned());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\U:");
    const auto answer = machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 32);
    EXPECT_TRUE(answer.done);
    EXPECT_EQ(answer.As<VOLUME_DISK_EXTENTS>().NumberOfDiskExtents, 0u);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, Length_IsTheSumOfTheExtents) {
    Machine machine(Spanned());
    const HANDLE handle = machine.kernel.Open(L"\\\\?\\GLOBALROOT\\Device\\HarddiskVolume1", GENERIC_READ);
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_LENGTH_INFO, 8)
                  .As<GET_LENGTH_INFORMATION>()
                  .Length.QuadPart,
              4LL << 30);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, PartitionInfo_IsThatOfTheOnlyExtent) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\C:", GENERIC_READ);
    const auto answer = machine.kernel.Ask(handle, IOCTL_DISK_GET_PARTITION_INFO, 32);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.As<PARTITION_INFORMATION>().PartitionNumber, 2u);
    EXPECT_EQ(answer.As<PARTITION_INFORMATION>().StartingOffset.QuadPart, 501LL << 20);
    const auto number =
        machine.kernel.Ask(handle, IOCTL_STORAGE_GET_DEVICE_NUMBER, 12).As<STORAGE_DEVICE_NUMBER>();
    EXPECT_EQ(number.PartitionNumber, 2u);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, DescribedStorageNumber_IsReturned) {
    Machine machine(R"({"volumes": [{"driveType": "cdrom", "mountPoints": ["E:\\"], "media": false,
                        "storageNumber": {"type": 2, "number": 1, "partition": 4294967295}}]})");
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\E:");
    const auto number =
        machine.kernel.Ask(handle, IOCTL_STORAGE_GET_DEVICE_NUMBER, 12).As<STORAGE_DEVICE_NUMBER>();
    EXPECT_EQ(number.DeviceType, DWORD{FILE_DEVICE_CD_ROM});
    EXPECT_EQ(number.DeviceNumber, 1u);
    EXPECT_EQ(number.PartitionNumber, 0xFFFFFFFF);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, PartitionInfoOnGpt_OnlyTheExtendedFormAnswers) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\D:", GENERIC_READ);
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_PARTITION_INFO, 32).error,
              DWORD{ERROR_INVALID_FUNCTION});
    const auto answer = machine.kernel.Ask(handle, IOCTL_DISK_GET_PARTITION_INFO_EX, 144);
    EXPECT_EQ(answer.As<PARTITION_INFORMATION_EX>().PartitionNumber, 3u);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, LayoutOfABasicVolume_IsItsDisks) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\D:");
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 4096)
                  .As<DRIVE_LAYOUT_INFORMATION_EX>()
                  .PartitionCount,
              3u);
    machine.kernel.CloseHandle(handle);
}

TEST_F(VolumeControls, CdRomWithoutMedium_IsNotReady) {
    Machine machine(SmallMachine());
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\E:", GENERIC_READ);
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_DISK_GET_LENGTH_INFO, 8).error, DWORD{ERROR_NOT_READY});
    EXPECT_EQ(machine.kernel.Ask(handle, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 32).error,
              DWORD{ERROR_INVALID_FUNCTION});
    machine.kernel.CloseHandle(handle);
}

}  // namespace
}  // namespace machine_test

#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace machine_test {
namespace {

constexpr DWORD kLayoutHeader = 48;
constexpr DWORD kLayoutEntry = 144;

class DiskControls : public testing::Test {
protected:
    HANDLE Open(const wchar_t* path, DWORD access = 0) {
        handle_ = machine_.kernel.Open(path, access);
        return handle_;
    }
    void TearDown() override {
        if (handle_ != INVALID_HANDLE_VALUE) {
            machine_.kernel.CloseHandle(handle_);
        }
        EXPECT_EQ(machine_.simulation.open_handles(), 0u);
    }

    Machine machine_{SmallMachine()};
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

TEST_F(DiskControls, GeometryWithoutAccess_IsAnswered) {
    Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_GEOMETRY, 24);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 24u);
    const auto geometry = answer.As<DISK_GEOMETRY>();
    EXPECT_EQ(geometry.BytesPerSector, 512u);
    EXPECT_EQ(geometry.SectorsPerTrack, 63u);
    EXPECT_EQ(geometry.TracksPerCylinder, 255u);
    EXPECT_EQ(geometry.MediaType, FixedMedia);
    EXPECT_EQ(geometry.Cylinders.QuadPart, (64LL << 30) / (255 * 63 * 512));
}

TEST_F(DiskControls, GeometryTooSmall_Is122) {
    Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_GEOMETRY, 23);
    EXPECT_FALSE(answer.done);
    EXPECT_EQ(answer.error, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(answer.returned, 0u);
}

TEST_F(DiskControls, GeometryEx_CarriesPartitionAndDetectionRecords) {
    Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 512);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 24u + 8u + sizeof(DISK_PARTITION_INFO) + sizeof(DISK_DETECTION_INFO));
    EXPECT_EQ(answer.As<LARGE_INTEGER>(24).QuadPart, 64LL << 30);
    const auto partition = answer.As<DISK_PARTITION_INFO>(32);
    EXPECT_EQ(partition.SizeOfPartitionInfo, 24u);
    EXPECT_EQ(partition.PartitionStyle, PARTITION_STYLE_MBR);
    EXPECT_EQ(partition.Mbr.Signature, 0x1A2B3C4Du);
    const auto detection = answer.As<DISK_DETECTION_INFO>(32 + 24);
    EXPECT_EQ(detection.SizeOfDetectInfo, sizeof(DISK_DETECTION_INFO));
    EXPECT_EQ(detection.DetectionType, DetectNone);
}

TEST_F(DiskControls, GeometryExOfGpt_CarriesTheDiskId) {
    Open(L"\\\\.\\PhysicalDrive3");
    const auto partition =
        machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 512).As<DISK_PARTITION_INFO>(32);
    EXPECT_EQ(partition.PartitionStyle, PARTITION_STYLE_GPT);
    EXPECT_EQ(partition.Gpt.DiskId.Data1, 0x11111111u);
}

TEST_F(DiskControls, GeometryExShort_GivesWhatFitsFrom32Bytes) {
    Open(L"\\\\.\\PhysicalDrive0");
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 31).error,
              DWORD{ERROR_INSUFFICIENT_BUFFER});
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 40);
    EXPECT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 40u);
}

TEST_F(DiskControls, LayoutExOfMbr_HasFourSlots) {
    Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 4096);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, kLayoutHeader + 4 * kLayoutEntry);
    const auto layout = answer.As<DRIVE_LAYOUT_INFORMATION_EX>();
    EXPECT_EQ(layout.PartitionStyle, DWORD{PARTITION_STYLE_MBR});
    EXPECT_EQ(layout.PartitionCount, 4u);
    EXPECT_EQ(layout.Mbr.Signature, 0x1A2B3C4Du);
    const auto first = answer.As<PARTITION_INFORMATION_EX>(kLayoutHeader);
    EXPECT_EQ(first.PartitionStyle, PARTITION_STYLE_MBR);
    EXPECT_EQ(first.StartingOffset.QuadPart, 1LL << 20);
    EXPECT_EQ(first.PartitionLength.QuadPart, 500LL << 20);
    EXPECT_EQ(first.PartitionNumber, 1u);
    EXPECT_EQ(first.Mbr.PartitionType, 7);
    EXPECT_TRUE(first.Mbr.BootIndicator);
    EXPECT_TRUE(first.Mbr.RecognizedPartition);
    EXPECT_EQ(first.Mbr.HiddenSectors, 2048u);
    const auto second = answer.As<PARTITION_INFORMATION_EX>(kLayoutHeader + kLayoutEntry);
    EXPECT_EQ(second.PartitionNumber, 2u);
    EXPECT_FALSE(second.Mbr.BootIndicator);
    const auto unused = answer.As<PARTITION_INFORMATION_EX>(kLayoutHeader + 2 * kLayoutEntry);
    EXPECT_EQ(unused.PartitionNumber, 0u);
    EXPECT_EQ(unused.Mbr.PartitionType, PARTITION_ENTRY_UNUSED);
    EXPECT_EQ(unused.PartitionLength.QuadPart, 0);
}

TEST_F(DiskControls, LayoutExOneByteShort_Is122WithoutBytes) {
    Open(L"\\\\.\\PhysicalDrive0");
    const auto answer =
        machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, kLayoutHeader + 4 * kLayoutEntry - 1);
    EXPECT_FALSE(answer.done);
    EXPECT_EQ(answer.error, DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(answer.returned, 0u);
    EXPECT_EQ(answer.bytes.front(), 0xAA);
    EXPECT_TRUE(
        machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, kLayoutHeader + 4 * kLayoutEntry).done);
}

// Members that the compiler's headers do not know.
TEST(MbrLayout, IdsAndChecksum_StandBehindTheKnownMembers) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr", "signature": 7,
        "layoutChecksum": 9, "partitions": [{"offset": "1 MiB", "size": "100 MiB", "type": "ntfs",
        "id": "{11111111-2222-3333-4444-555555555555}"}]}]})");
    const HANDLE disk = machine.kernel.Open(L"\\\\.\\PhysicalDrive0", 0);
    const auto answer = machine.kernel.Ask(disk, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 4096);
    machine.kernel.CloseHandle(disk);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.As<DWORD>(8), 7u);
    EXPECT_EQ(answer.As<DWORD>(12), 9u);
    EXPECT_EQ(answer.As<DWORD>(kLayoutHeader + 40), 0x11111111u);
    EXPECT_EQ(answer.As<DWORD>(kLayoutHeader + 52), 0x55555555u);
}

TEST_F(DiskControls, LayoutExOfGpt_NumbersAndNamesThePartitions) {
    Open(L"\\\\.\\PhysicalDrive3");
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 4096);
    ASSERT_TRUE(answer.done);
    const auto layout = answer.As<DRIVE_LAYOUT_INFORMATION_EX>();
    EXPECT_EQ(layout.PartitionStyle, DWORD{PARTITION_STYLE_GPT});
    EXPECT_EQ(layout.PartitionCount, 3u);
    EXPECT_EQ(layout.Gpt.StartingUsableOffset.QuadPart, 17408);
    EXPECT_EQ(layout.Gpt.UsableLength.QuadPart, (1LL << 40) - 34304);
    EXPECT_EQ(layout.Gpt.MaxPartitionCount, 128u);
    const auto esp = answer.As<PARTITION_INFORMATION_EX>(kLayoutHeader);
    EXPECT_EQ(esp.PartitionNumber, 1u);
    EXPECT_EQ(esp.Gpt.PartitionType.Data1, 0xC12A7328u);
    EXPECT_STREQ(esp.Gpt.Name, L"EFI system partition");
    EXPECT_EQ(esp.Gpt.Attributes, 0x8000000000000000u);
    const auto data = answer.As<PARTITION_INFORMATION_EX>(kLayoutHeader + 2 * kLayoutEntry);
    EXPECT_EQ(data.PartitionNumber, 3u);
    EXPECT_EQ(data.Gpt.PartitionType.Data1, 0xEBD0A0A2u);
}

TEST_F(DiskControls, LegacyLayout_NeedsReadAccess) {
    Open(L"\\\\.\\PhysicalDrive0");
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT, 512).error,
              DWORD{ERROR_ACCESS_DENIED});
    machine_.kernel.CloseHandle(handle_);
    Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ);
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT, 512);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 8u + 4u * 32u);
    EXPECT_EQ(answer.As<DRIVE_LAYOUT_INFORMATION>().PartitionCount, 4u);
    EXPECT_EQ(answer.As<DRIVE_LAYOUT_INFORMATION>().Signature, 0x1A2B3C4Du);
    const auto second = answer.As<PARTITION_INFORMATION>(8 + 32);
    EXPECT_EQ(second.StartingOffset.QuadPart, 501LL << 20);
    EXPECT_EQ(second.PartitionNumber, 2u);
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT, 135).error,
              DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST_F(DiskControls, LegacyControlsOfGpt_AreNotSupported) {
    Open(L"\\\\.\\PhysicalDrive3", GENERIC_READ);
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_DRIVE_LAYOUT, 512).error,
              DWORD{ERROR_INVALID_FUNCTION});
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_PARTITION_INFO, 32).error,
              DWORD{ERROR_INVALID_FUNCTION});
}

TEST_F(DiskControls, Length_NeedsReadAccess) {
    Open(L"\\\\.\\PhysicalDrive3");
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_LENGTH_INFO, 8).error, DWORD{ERROR_ACCESS_DENIED});
    machine_.kernel.CloseHandle(handle_);
    Open(L"\\\\.\\PhysicalDrive3", GENERIC_READ);
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_LENGTH_INFO, 8);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.returned, 8u);
    EXPECT_EQ(answer.As<GET_LENGTH_INFORMATION>().Length.QuadPart, 1LL << 40);
}

TEST_F(DiskControls, PartitionInfoOfADisk_IsTheWholeDisk) {
    Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ);
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_DISK_GET_PARTITION_INFO, 32);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.As<PARTITION_INFORMATION>().PartitionLength.QuadPart, 64LL << 30);
    EXPECT_EQ(answer.As<PARTITION_INFORMATION>().PartitionNumber, 0u);
    EXPECT_TRUE(machine_.kernel.Ask(handle_, IOCTL_DISK_GET_PARTITION_INFO_EX, 144).done);
}

TEST_F(DiskControls, DeviceNumber_IsTheIndex) {
    Open(L"\\\\.\\PhysicalDrive3");
    const auto answer = machine_.kernel.Ask(handle_, IOCTL_STORAGE_GET_DEVICE_NUMBER, 12);
    ASSERT_TRUE(answer.done);
    EXPECT_EQ(answer.As<STORAGE_DEVICE_NUMBER>().DeviceNumber, 3u);
}

TEST_F(DiskControls, UnknownCode_IsAnInvalidFunction) {
    Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ | GENERIC_WRITE);
    EXPECT_EQ(machine_.kernel.Ask(handle_, 0x00098765 & ~0xC000u, 64).error, DWORD{ERROR_INVALID_FUNCTION});
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, 64).error,
              DWORD{ERROR_INVALID_FUNCTION});
}

TEST_F(DiskControls, Writing_NeedsReadAndWriteAccess) {
    Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ);
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_SET_DRIVE_LAYOUT_EX, 0).error,
              DWORD{ERROR_ACCESS_DENIED});
    machine_.kernel.CloseHandle(handle_);
    Open(L"\\\\.\\PhysicalDrive0", GENERIC_WRITE);
    EXPECT_EQ(machine_.kernel.Ask(handle_, IOCTL_DISK_CREATE_DISK, 0).error, DWORD{ERROR_ACCESS_DENIED});
}

TEST(DiskDescription, DetectionRecord_IsHandedOut) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB", "detection": {"type": "exint13",
        "driveSelect": 128, "maxCylinders": 1023, "sectorsPerTrack": 63, "maxHeads": 254, "numberDrives": 1,
        "exBufferSize": 74, "exFlags": 2, "exCylinders": 130, "exHeads": 255, "exSectorsPerTrack": 63,
        "exSectorsPerDrive": 2097152, "exSectorSize": 512, "exReserved": 7}}]})");
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    const auto detection =
        machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 512).As<DISK_DETECTION_INFO>(56);
    EXPECT_EQ(detection.DetectionType, DetectExInt13);
    EXPECT_EQ(detection.Int13.DriveSelect, 128);
    EXPECT_EQ(detection.Int13.MaxHeads, 254);
    EXPECT_EQ(detection.ExInt13.ExSectorsPerDrive, 2097152u);
    EXPECT_EQ(detection.ExInt13.ExReserved, 7);
    machine.kernel.CloseHandle(handle);
}

TEST(DiskDescription, RawDisk_HasNoPartitions) {
    Machine machine(R"({"disks": [{"index": 0, "size": "1 GiB"}]})");
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 512);
    EXPECT_EQ(answer.returned, kLayoutHeader);
    EXPECT_EQ(answer.As<DRIVE_LAYOUT_INFORMATION_EX>().PartitionStyle, DWORD{PARTITION_STYLE_RAW});
    EXPECT_EQ(answer.As<DRIVE_LAYOUT_INFORMATION_EX>().PartitionCount, 0u);
    machine.kernel.CloseHandle(handle);
}

TEST(DiskDescription, ExtendedPartition_ListsEachLogicalInAGroupOfFour) {
    Machine machine(R"({"disks": [{"index": 0, "size": "100 GiB", "style": "mbr", "partitions": [
        {"offset": "1 MiB", "size": "20 GiB", "type": "ntfs"},
        {"offset": "30 GiB", "size": "60 GiB", "type": "extended-lba", "logical": [
            {"offset": 32213303296, "size": "10 GiB", "type": "ntfs"},
            {"offset": "41 GiB", "size": "5 GiB", "type": "fat32", "record": "40500 MiB"}]}]}]})");
    const HANDLE handle = machine.kernel.Open(L"\\\\.\\PhysicalDrive0");
    const auto answer = machine.kernel.Ask(handle, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 4096);
    ASSERT_EQ(answer.As<DRIVE_LAYOUT_INFORMATION_EX>().PartitionCount, 12u);
    const auto entry = [&](DWORD index) {
        return answer.As<PARTITION_INFORMATION_EX>(kLayoutHeader + index * kLayoutEntry);
    };
    EXPECT_EQ(entry(1).Mbr.PartitionType, 0x0F);
    EXPECT_EQ(entry(1).PartitionNumber, 0u);
    EXPECT_FALSE(entry(1).Mbr.RecognizedPartition);
    EXPECT_EQ(entry(4).PartitionNumber, 2u);
    EXPECT_EQ(entry(4).StartingOffset.QuadPart, 32213303296);
    EXPECT_EQ(entry(4).Mbr.HiddenSectors, 2048u);
    EXPECT_EQ(entry(5).Mbr.PartitionType, 0x05);
    EXPECT_EQ(entry(5).PartitionNumber, 0u);
    EXPECT_EQ(entry(5).StartingOffset.QuadPart, 40500LL << 20);
    EXPECT_EQ(entry(6).Mbr.PartitionType, 0);
    EXPECT_EQ(entry(7).Mbr.PartitionType, 0);
    EXPECT_EQ(entry(8).PartitionNumber, 3u);
    EXPECT_EQ(entry(8).Mbr.PartitionType, 0x0B);
    EXPECT_EQ(entry(9).Mbr.PartitionType, 0);
    machine.kernel.CloseHandle(handle);
}

TEST(DiskDescription, SlotAndNumber_AreKeptAsGiven) {
    Machine machine(R"({"disks": [{"index": 0, "size": "10 GiB", "style": "mbr", "partitions": [
        {"offset": "5 GiB", "size": "1 GiB", "type": "ntfs", "slot": 3},
        {"offset": "1 GiB", "size": "1 GiB", "type": "0x42", "number": 9, "recognized": true}]}]})");
    const auto& partitions = machine.simulation.machine().disks[0].partitions;
    EXPECT_EQ(partitions[2].number, 2u);
    EXPECT_EQ(partitions[0].number, 9u);
    EXPECT_TRUE(partitions[0].recognized);
    EXPECT_EQ(partitions[1].length, 0u);
}

}  // namespace
}  // namespace machine_test

#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <string>

namespace machine_test {
namespace {

machine::Description LargeMachine(std::uint32_t disks, std::uint32_t partitions, std::uint32_t volumes) {
    machine::Description description = Parse("{}");
    for (std::uint32_t index = 0; index < disks; ++index) {
        machine::Disk disk;
        disk.index = index;
        disk.size = 1ULL << 40;
        disk.style = PARTITION_STYLE_GPT;
        for (std::uint32_t number = 1; number <= partitions; ++number) {
            machine::Partition partition;
            partition.style = PARTITION_STYLE_GPT;
            partition.offset = static_cast<std::uint64_t>(number) << 30;
            partition.length = 1ULL << 30;
            partition.number = number;
            disk.partitions.push_back(partition);
        }
        description.disks.push_back(disk);
    }
    for (std::uint32_t number = 1; number <= volumes; ++number) {
        machine::Volume volume;
        const std::string digits = std::to_string(1000000 + number);
        volume.guid = L"{00000000-0000-0000-0000-00000" + std::wstring(digits.begin(), digits.end()) + L"}";
        volume.device = L"\\Device\\HarddiskVolume" + std::to_wstring(number);
        volume.file_system = L"NTFS";
        for (int mount = 0; mount < 4; ++mount) {
            volume.mount_points.push_back(L"C:\\Mount\\" + std::to_wstring(number) + L"-" +
                                          std::to_wstring(mount) + L"\\");
        }
        description.volumes.push_back(volume);
    }
    return description;
}

// If a look-up searched all volumes, this test would exceed the watchdog's limit.
TEST(LargeMachine, EveryVolume_IsFoundByEveryName) {
    constexpr std::uint32_t kVolumes = 10000;
    Machine machine(LargeMachine(256, 128, kVolumes));
    machine.simulation.calls().SetKept(false);
    wchar_t name[64];
    wchar_t buffer[512];
    std::uint32_t found = 0;
    const HANDLE search = machine.kernel.FindFirstVolumeW(name, 64);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    do {
        DWORD needed = 0;
        ASSERT_TRUE(machine.kernel.GetVolumePathNamesForVolumeNameW(name, buffer, 512, &needed));
        EXPECT_EQ(machine.kernel.GetDriveTypeW(buffer), UINT{DRIVE_FIXED});
        std::wstring link(name + 4);
        link.pop_back();
        EXPECT_NE(machine.kernel.QueryDosDeviceW(link.c_str(), buffer, 512), 0u);
        const HANDLE volume = machine.kernel.Open((L"\\\\?\\GLOBALROOT" + std::wstring(buffer)).c_str());
        EXPECT_NE(volume, INVALID_HANDLE_VALUE);
        machine.kernel.CloseHandle(volume);
        ++found;
    } while (machine.kernel.FindNextVolumeW(search, name, 64));
    machine.kernel.FindVolumeClose(search);
    EXPECT_EQ(found, kVolumes);
    EXPECT_EQ(machine.simulation.open_handles(), 0u);
}

TEST(LargeMachine, EveryDisk_AnswersItsWholeLayout) {
    Machine machine(LargeMachine(256, 128, 0));
    for (std::uint32_t index = 0; index < 256; ++index) {
        const HANDLE disk = machine.kernel.Open((L"\\\\.\\PhysicalDrive" + std::to_wstring(index)).c_str());
        const auto layout = machine.kernel.Ask(disk, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 32768);
        EXPECT_EQ(layout.As<DRIVE_LAYOUT_INFORMATION_EX>().PartitionCount, 128u);
        EXPECT_EQ(layout.returned, 48u + 128u * 144u);
        machine.kernel.CloseHandle(disk);
    }
}

}  // namespace
}  // namespace machine_test

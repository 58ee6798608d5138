#include "machine/description/wmi_defaults.h"
#include "machine/test_machine.h"

#include <gtest/gtest.h>

#include <string>

namespace machine_test {
namespace {

constexpr DWORD kLayoutHeader = 48;
constexpr DWORD kLayoutEntry = 144;
constexpr LONGLONG kGiB = 1LL << 30;

// A machine with one disk of 1 GiB, open for reading.
class OneDisk {
public:
    explicit OneDisk(const std::string& keys)
        : machine_(R"({"disks": [{"index": 0, "size": "1 GiB", )" + keys + "}]}"),
          handle_(machine_.kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ | GENERIC_WRITE)) {}
    ~OneDisk() { machine_.kernel.CloseHandle(handle_); }
    OneDisk(const OneDisk&) = delete;
    OneDisk& operator=(const OneDisk&) = delete;

    Kernel::Control Ask(DWORD code, DWORD size = 4096) const {
        return machine_.kernel.Ask(handle_, code, size);
    }
    DISK_PARTITION_INFO Record() const {
        return Ask(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX).As<DISK_PARTITION_INFO>(32);
    }
    DRIVE_LAYOUT_INFORMATION_EX Layout() const {
        return Ask(IOCTL_DISK_GET_DRIVE_LAYOUT_EX).As<DRIVE_LAYOUT_INFORMATION_EX>();
    }
    PARTITION_INFORMATION_EX Entry(DWORD index) const {
        return Ask(IOCTL_DISK_GET_DRIVE_LAYOUT_EX)
            .As<PARTITION_INFORMATION_EX>(kLayoutHeader + index * kLayoutEntry);
    }
    const machine::WmiInstance& wmi() const {
        return machine_.simulation.machine().wmi.at(L"WIN32_DISKDRIVE").instances.at(0);
    }
    Machine& machine() { return machine_; }

private:
    Machine machine_;
    HANDLE handle_;
};

TEST(DiskWithoutTable, Raw_IsStyle2EverywhereAndWithoutOlderLayout) {
    const OneDisk disk(R"("style": "raw")");
    EXPECT_EQ(disk.Record().SizeOfPartitionInfo, 24u);
    EXPECT_EQ(disk.Record().PartitionStyle, PARTITION_STYLE_RAW);
    EXPECT_EQ(disk.Layout().PartitionStyle, DWORD{PARTITION_STYLE_RAW});
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT).error, DWORD{ERROR_INVALID_FUNCTION});
}

TEST(DiskWithoutTable, Blank_IsStyle0WithAZeroedRecordAndWithoutOlderLayout) {
    const OneDisk disk(R"("blank": true)");
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX).returned,
              32u + sizeof(DISK_PARTITION_INFO) + sizeof(DISK_DETECTION_INFO));
    EXPECT_EQ(disk.Record().SizeOfPartitionInfo, 0u);
    EXPECT_EQ(disk.Record().PartitionStyle, PARTITION_STYLE_MBR);
    EXPECT_EQ(disk.Record().Mbr.Signature, 0u);
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT_EX).returned, kLayoutHeader);
    EXPECT_EQ(disk.Layout().PartitionStyle, DWORD{PARTITION_STYLE_MBR});
    EXPECT_EQ(disk.Layout().PartitionCount, 0u);
    EXPECT_EQ(disk.Layout().Mbr.Signature, 0u);
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT).error, DWORD{ERROR_INVALID_FUNCTION});
}

TEST(DiskWithoutTable, Blank_GetsATableFromCreateDisk) {
    OneDisk disk(R"("blank": true)");
    CREATE_DISK create{};
    create.PartitionStyle = PARTITION_STYLE_MBR;
    create.Mbr.Signature = 77;
    const HANDLE handle = disk.machine().kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ | GENERIC_WRITE);
    DWORD returned = 0;
    EXPECT_TRUE(disk.machine().kernel.DeviceIoControl(handle, IOCTL_DISK_CREATE_DISK, &create, sizeof(create),
                                                      nullptr, 0, &returned, nullptr));
    disk.machine().kernel.CloseHandle(handle);
    EXPECT_EQ(disk.Record().SizeOfPartitionInfo, 24u);
    EXPECT_EQ(disk.Record().Mbr.Signature, 77u);
    EXPECT_TRUE(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT).done);
}

TEST(DiskWithoutTable, NoneOfItsForms_HasASignatureInWmi) {
    for (const char* keys : {R"("blank": true)", R"("style": "raw")"}) {
        const OneDisk disk(keys);
        const machine::WmiProperty* signature = machine::FindProperty(disk.wmi(), L"Signature");
        ASSERT_NE(signature, nullptr) << keys;
        EXPECT_EQ(signature->value.type, VT_NULL) << keys;
    }
}

TEST(OfflineDisk, OnlyTheOlderLayout_IsNotReady) {
    const OneDisk disk(R"("style": "mbr", "offline": true)");
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT).error, DWORD{ERROR_NOT_READY});
    EXPECT_EQ(disk.Layout().PartitionCount, 4u);
    EXPECT_TRUE(disk.Ask(IOCTL_DISK_GET_DRIVE_GEOMETRY_EX).done);
}

TEST(OfflineDisk, WithoutTable_IsNotReadyEither) {
    const OneDisk disk(R"("style": "raw", "offline": true)");
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT).error, DWORD{ERROR_NOT_READY});
}

TEST(SuperFloppy, Layout_IsOneEntryOverTheWholeDisk) {
    const OneDisk disk(R"("mediaType": "removable", "superFloppy": {})");
    EXPECT_EQ(disk.Layout().PartitionStyle, DWORD{PARTITION_STYLE_MBR});
    EXPECT_EQ(disk.Layout().PartitionCount, 1u);
    EXPECT_EQ(disk.Layout().Mbr.Signature, 1u);
    EXPECT_EQ(disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT_EX).returned, kLayoutHeader + kLayoutEntry);
    EXPECT_EQ(disk.Entry(0).StartingOffset.QuadPart, 0);
    EXPECT_EQ(disk.Entry(0).PartitionLength.QuadPart, kGiB);
    EXPECT_EQ(disk.Entry(0).PartitionNumber, 0u);
    EXPECT_EQ(disk.Entry(0).Mbr.PartitionType, 0x04);
    EXPECT_TRUE(disk.Entry(0).Mbr.RecognizedPartition);
    EXPECT_EQ(disk.Entry(0).Mbr.HiddenSectors, 0u);
    const auto older = disk.Ask(IOCTL_DISK_GET_DRIVE_LAYOUT);
    EXPECT_EQ(older.As<DRIVE_LAYOUT_INFORMATION>().PartitionCount, 1u);
    EXPECT_EQ(older.As<PARTITION_INFORMATION>(8).PartitionLength.QuadPart, kGiB);
}

TEST(SuperFloppy, NumberTypeAndSignature_AreDescribable) {
    const OneDisk disk(R"("superFloppy": {"number": 1, "type": "fat32"}, "signature": "0xA0B0C0D0")");
    EXPECT_EQ(disk.Entry(0).PartitionNumber, 1u);
    EXPECT_EQ(disk.Entry(0).Mbr.PartitionType, 0x0B);
    EXPECT_EQ(disk.Layout().Mbr.Signature, 0xA0B0C0D0u);
}

TEST(SuperFloppy, VolumeOnIt_StandsOnTheEntryOrOnTheExtent) {
    const machine::Description numbered = Parse(R"({
        "disks": [{"index": 2, "size": "1 GiB", "superFloppy": {"number": 1}}],
        "volumes": [{"partition": {"disk": 2, "number": 1}, "fileSystem": "FAT32"}]})");
    EXPECT_EQ(numbered.volumes[0].extents->at(0).length, 1u << 30);
    ASSERT_TRUE(numbered.volumes[0].partition);
    const machine::Description unnumbered = Parse(R"({
        "disks": [{"index": 2, "size": "1 GiB", "superFloppy": {}}],
        "volumes": [{"extents": [{"disk": 2, "offset": 0, "length": "1 GiB"}], "fileSystem": "FAT32"}]})");
    EXPECT_FALSE(unnumbered.volumes[0].partition);
}

// The types of a recovery partition, a dynamic disk, another system, a FAT and an extended partition.
constexpr const char* kTypes = R"("style": "mbr", "partitions": [
    {"offset": "1 MiB", "size": "1 MiB", "type": "0x27"}, {"offset": "2 MiB", "size": "1 MiB", "type": "ldm"},
    {"offset": "3 MiB", "size": "1 MiB", "type": "0x0C"},
    {"offset": "4 MiB", "size": "9 MiB", "type": "extended", "logical": [
        {"offset": "5 MiB", "size": "1 MiB", "type": "0x83"}, {"offset": "7 MiB", "size": "1 MiB", "type": "0x07"}]}])";

std::string Recognized(const OneDisk& disk) {
    std::string flags;
    for (DWORD i = 0; i < disk.Layout().PartitionCount; ++i) {
        flags += disk.Entry(i).Mbr.RecognizedPartition != 0 ? '1' : '0';
    }
    return flags;
}

TEST(RecognizedPartition, ByDefault_FollowsTheType) {
    EXPECT_EQ(Recognized(OneDisk(kTypes)), "001000001000");
    EXPECT_EQ(Recognized(OneDisk(std::string(R"("recognition": "type", )") + kTypes)), "001000001000");
}

TEST(RecognizedPartition, Used_IsEveryEntryButContainersAndUnused) {
    EXPECT_EQ(Recognized(OneDisk(std::string(R"("recognition": "used", )") + kTypes)), "111010001000");
}

struct Refused {
    const char* keys;
    const char* path;
};

TEST(DiskKinds, KeysThatContradict_AreRefused) {
    const Refused cases[] = {
        {R"("blank": true, "style": "mbr")", "/disks/0/style"},
        {R"("blank": true, "partitions": [])", "/disks/0/partitions"},
        {R"("superFloppy": {}, "style": "gpt")", "/disks/0/style"},
        {R"("superFloppy": {"number": 2})", "/disks/0/superFloppy/number"},
        {R"("superFloppy": {"type": 0})", "/disks/0/superFloppy/type"},
        {R"("recognition": "all")", "/disks/0/recognition"},
    };
    for (const Refused& refused : cases) {
        try {
            Parse(std::string(R"({"disks": [{"index": 0, "size": "1 GiB", )") + refused.keys + "}]}");
            ADD_FAILURE() << refused.keys;
        } catch (const machine::DescriptionError& error) {
            EXPECT_EQ(error.path(), refused.path);
        }
    }
}

}  // namespace
}  // namespace machine_test

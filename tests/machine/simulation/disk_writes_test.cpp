#include "machine/description/text.h"
#include "machine/image_support.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace machine_test {
namespace {

constexpr std::uint64_t kSize = 64ULL << 20;
constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);

class DiskWrites : public testing::Test {
protected:
    void Start(const machine::Description& description) {
        machine_ = std::make_unique<Machine>(description);
        handle_ = machine_->kernel.Open(L"\\\\.\\PhysicalDrive0", GENERIC_READ | GENERIC_WRITE);
        ASSERT_NE(handle_, INVALID_HANDLE_VALUE);
    }
    void TearDown() override {
        if (machine_) {
            machine_->kernel.CloseHandle(handle_);
        }
    }

    DWORD Send(DWORD code, const void* input, std::size_t size) {
        DWORD returned = 0;
        std::vector<unsigned char> copy(static_cast<const unsigned char*>(input),
                                        static_cast<const unsigned char*>(input) + size);
        SetLastError(0);
        const BOOL done = machine_->kernel.DeviceIoControl(
            handle_, code, copy.data(), static_cast<DWORD>(size), nullptr, 0, &returned, nullptr);
        return done ? 0 : GetLastError();
    }

    DWORD Create(PARTITION_STYLE style) {
        CREATE_DISK create{};
        create.PartitionStyle = style;
        if (style == PARTITION_STYLE_MBR) {
            create.Mbr.Signature = 0xABCD1234;
        } else if (style == PARTITION_STYLE_GPT) {
            create.Gpt.DiskId = *machine::ParseGuid("{b0000000-0000-0000-0000-00000000000b}");
            create.Gpt.MaxPartitionCount = 128;
        }
        return Send(IOCTL_DISK_CREATE_DISK, &create, sizeof(create));
    }

    static std::vector<unsigned char> Layout(DWORD style,
                                             const std::vector<PARTITION_INFORMATION_EX>& entries) {
        std::vector<unsigned char> bytes(kHeader + entries.size() * sizeof(PARTITION_INFORMATION_EX));
        DRIVE_LAYOUT_INFORMATION_EX header{};
        header.PartitionStyle = style;
        header.PartitionCount = static_cast<DWORD>(entries.size());
        if (style == PARTITION_STYLE_MBR) {
            header.Mbr.Signature = 0x11223344;
        } else {
            header.Gpt.DiskId = *machine::ParseGuid("{c0000000-0000-0000-0000-00000000000c}");
        }
        std::memcpy(bytes.data(), &header, kHeader);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            std::memcpy(bytes.data() + kHeader + i * sizeof(entries[i]), &entries[i], sizeof(entries[i]));
        }
        return bytes;
    }

    DWORD Set(DWORD style, const std::vector<PARTITION_INFORMATION_EX>& entries) {
        const std::vector<unsigned char> layout = Layout(style, entries);
        return Send(IOCTL_DISK_SET_DRIVE_LAYOUT_EX, layout.data(), layout.size());
    }

    static PARTITION_INFORMATION_EX Mbr(LONGLONG offset, LONGLONG length, BYTE type, bool active = false) {
        PARTITION_INFORMATION_EX entry{};
        entry.PartitionStyle = PARTITION_STYLE_MBR;
        entry.StartingOffset.QuadPart = offset;
        entry.PartitionLength.QuadPart = length;
        entry.RewritePartition = TRUE;
        entry.Mbr.PartitionType = type;
        entry.Mbr.BootIndicator = active;
        return entry;
    }

    static PARTITION_INFORMATION_EX Gpt(LONGLONG offset, LONGLONG length) {
        PARTITION_INFORMATION_EX entry{};
        entry.PartitionStyle = PARTITION_STYLE_GPT;
        entry.StartingOffset.QuadPart = offset;
        entry.PartitionLength.QuadPart = length;
        entry.RewritePartition = TRUE;
        entry.Gpt.PartitionType = *machine::ParseGuid("{ebd0a0a2-b9e5-4433-87c0-68b6b72699c7}");
        entry.Gpt.PartitionId = machine::DerivedGuid("p");
        wcscpy(entry.Gpt.Name, L"Basic data partition");
        return entry;
    }

    const machine::Disk& disk() const { return machine_->simulation.machine().disks[0]; }

    std::unique_ptr<Machine> machine_;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

machine::Description PlainDisk() {
    return Parse(R"({"disks": [{"index": 0, "size": "64 MiB"}]})");
}

TEST_F(DiskWrites, CreateMbr_MakesFourUnusedEntries) {
    Start(PlainDisk());
    EXPECT_EQ(Create(PARTITION_STYLE_MBR), 0u);
    EXPECT_EQ(disk().style, std::uint32_t{PARTITION_STYLE_MBR});
    EXPECT_EQ(disk().signature, 0xABCD1234u);
    EXPECT_EQ(disk().partitions.size(), 4u);
}

TEST_F(DiskWrites, CreateGpt_MakesAnEmptyTableWithItsUsableRange) {
    Start(PlainDisk());
    EXPECT_EQ(Create(PARTITION_STYLE_GPT), 0u);
    EXPECT_EQ(disk().style, std::uint32_t{PARTITION_STYLE_GPT});
    EXPECT_TRUE(disk().partitions.empty());
    EXPECT_EQ(disk().starting_usable_offset, 17408u);
    EXPECT_EQ(disk().usable_length, kSize - 34304);
}

TEST_F(DiskWrites, CreateWithShortInput_IsABadLength) {
    Start(PlainDisk());
    CREATE_DISK create{};
    EXPECT_EQ(Send(IOCTL_DISK_CREATE_DISK, &create, 23), DWORD{ERROR_BAD_LENGTH});
    const DWORD unknown_style = 9;
    std::memcpy(&create.PartitionStyle, &unknown_style, sizeof(unknown_style));
    EXPECT_EQ(Send(IOCTL_DISK_CREATE_DISK, &create, 24), DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(DiskWrites, SetMbr_ChangesTheTable) {
    Start(PlainDisk());
    Create(PARTITION_STYLE_MBR);
    EXPECT_EQ(Set(PARTITION_STYLE_MBR, {Mbr(1 << 20, 8 << 20, 7, true), {}, {}, {}}), 0u);
    EXPECT_EQ(disk().signature, 0x11223344u);
    EXPECT_EQ(disk().partitions[0].number, 1u);
    EXPECT_TRUE(disk().partitions[0].active);
    EXPECT_TRUE(disk().partitions[0].recognized);
    EXPECT_FALSE(disk().partitions[0].rewrite);
}

TEST_F(DiskWrites, SetMbrWithoutRewrite_KeepsTheEntry) {
    Start(PlainDisk());
    Create(PARTITION_STYLE_MBR);
    ASSERT_EQ(Set(PARTITION_STYLE_MBR, {Mbr(1 << 20, 8 << 20, 7), {}, {}, {}}), 0u);
    PARTITION_INFORMATION_EX changed = Mbr(16 << 20, 8 << 20, 0x0C);
    changed.RewritePartition = FALSE;
    ASSERT_EQ(Set(PARTITION_STYLE_MBR, {changed, {}, {}, {}}), 0u);
    EXPECT_EQ(disk().partitions[0].offset, 1u << 20);
    EXPECT_EQ(disk().partitions[0].mbr_type, 7);
}

TEST_F(DiskWrites, SetRefusals_LeaveTheTable) {
    Start(PlainDisk());
    EXPECT_EQ(Set(PARTITION_STYLE_MBR, {{}, {}, {}, {}}), DWORD{ERROR_INVALID_PARAMETER});  // still raw
    Create(PARTITION_STYLE_MBR);
    EXPECT_EQ(Set(PARTITION_STYLE_GPT, {}), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Set(PARTITION_STYLE_MBR, {{}, {}, {}}), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Set(PARTITION_STYLE_MBR, {Mbr(1 << 20, 64 << 20, 7), {}, {}, {}}),
              DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Set(PARTITION_STYLE_MBR, {Mbr(1 << 20, 8 << 20, 7), Mbr(8 << 20, 8 << 20, 7), {}, {}}),
              DWORD{ERROR_INVALID_PARAMETER});
    const std::vector<unsigned char> layout = Layout(PARTITION_STYLE_MBR, {{}, {}, {}, {}});
    EXPECT_EQ(Send(IOCTL_DISK_SET_DRIVE_LAYOUT_EX, layout.data(), layout.size() - 1),
              DWORD{ERROR_BAD_LENGTH});
    EXPECT_EQ(Send(IOCTL_DISK_SET_DRIVE_LAYOUT_EX, layout.data(), 47), DWORD{ERROR_BAD_LENGTH});
    EXPECT_EQ(disk().signature, 0xABCD1234u);
}

TEST_F(DiskWrites, SetGpt_RefusesWhatLiesOutsideTheUsableRange) {
    Start(PlainDisk());
    Create(PARTITION_STYLE_GPT);
    EXPECT_EQ(Set(PARTITION_STYLE_GPT, {Gpt(512, 1 << 20)}), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Set(PARTITION_STYLE_GPT, {Gpt(1 << 20, 63 << 20)}), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Set(PARTITION_STYLE_GPT, {Gpt(1 << 20, 62 << 20)}), 0u);
    EXPECT_EQ(Set(PARTITION_STYLE_GPT, std::vector<PARTITION_INFORMATION_EX>(129, Gpt(1 << 20, 512))),
              DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(DiskWrites, WritableImage_HoldsTheGptForTheNextReader) {
    const TestImage image("machine-write-gpt.img", kSize);
    machine::Bytes code(440, 0x90);
    image.Write(0, code);
    Start(image.Describe(R"(, "writable": true)"));
    ASSERT_EQ(Create(PARTITION_STYLE_GPT), 0u);
    ASSERT_EQ(Set(PARTITION_STYLE_GPT, {Gpt(1 << 20, 8 << 20), Gpt(9 << 20, 4 << 20)}), 0u);
    EXPECT_EQ(Send(IOCTL_DISK_UPDATE_PROPERTIES, nullptr, 0), 0u);
    EXPECT_EQ(disk().partitions.size(), 2u);
    EXPECT_TRUE(machine_->kernel.FlushFileBuffers(handle_));

    machine::Description again = image.Describe();
    EXPECT_EQ(machine::GuidText(again.disks[0].disk_id), "{c0000000-0000-0000-0000-00000000000c}");
    ASSERT_EQ(again.disks[0].partitions.size(), 2u);
    EXPECT_EQ(again.disks[0].partitions[1].offset, 9u << 20);
    EXPECT_EQ(again.disks[0].partitions[1].gpt_name, L"Basic data partition");
    EXPECT_EQ(image.Read(0, 440), code);
    // The backup header is enough to read the table.
    image.Write(512, machine::Bytes(512));
    again = image.Describe();
    EXPECT_EQ(again.disks[0].partitions.size(), 2u);
}

TEST_F(DiskWrites, WritableImage_HoldsTheMbrWithItsLogicals) {
    const TestImage image("machine-write-mbr.img", kSize);
    Start(image.Describe(R"(, "writable": true)"));
    ASSERT_EQ(Create(PARTITION_STYLE_GPT), 0u);
    ASSERT_EQ(Create(PARTITION_STYLE_MBR), 0u);
    ASSERT_EQ(Set(PARTITION_STYLE_MBR, {Mbr(1 << 20, 8 << 20, 7, true),
                                        Mbr(10 << 20, 40 << 20, 0x0F),
                                        {},
                                        {},
                                        Mbr(11 << 20, 5 << 20, 7),
                                        Mbr(20 << 20, 6 << 20, 5),
                                        {},
                                        {},
                                        Mbr(21 << 20, 5 << 20, 0x0B),
                                        {},
                                        {},
                                        {}}),
              0u);
    const machine::Description again = image.Describe();
    const auto& partitions = again.disks[0].partitions;
    EXPECT_EQ(again.disks[0].signature, 0x11223344u);
    ASSERT_EQ(partitions.size(), 12u);
    EXPECT_EQ(partitions[4].offset, 11u << 20);
    EXPECT_EQ(partitions[5].offset, 20u << 20);
    EXPECT_EQ(partitions[8].offset, 21u << 20);
    EXPECT_EQ(partitions[8].number, 3u);
    EXPECT_EQ(partitions[8].mbr_type, 0x0B);
    const machine::Bytes old_header = image.Read(512, 8);
    EXPECT_EQ(old_header, machine::Bytes(8)) << "the former GPT must not be readable";
}

TEST_F(DiskWrites, ImageThatIsNotWritable_StaysAsItIs) {
    const TestImage image("machine-write-none.img", kSize);
    Start(image.Describe());
    ASSERT_EQ(Create(PARTITION_STYLE_MBR), 0u);
    EXPECT_EQ(disk().style, std::uint32_t{PARTITION_STYLE_MBR});
    EXPECT_EQ(image.Read(0, 512), machine::Bytes(512));
    const machine::Bytes sector(512, 1);
    DWORD written = 0;
    EXPECT_FALSE(machine_->kernel.WriteFile(handle_, sector.data(), 512, &written, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_WRITE_PROTECT});
}

TEST_F(DiskWrites, WriteTo_LeavesTheImageAndChangesTheCopy) {
    const TestImage image("machine-write-original.img", kSize);
    const TestImage copy("machine-write-copy.img", 512);
    Start(image.Describe(R"(, "writeTo": "machine-write-copy.img")"));
    EXPECT_EQ(std::filesystem::file_size(copy.file()), 512u);
    ASSERT_EQ(Create(PARTITION_STYLE_MBR), 0u);
    EXPECT_EQ(image.Read(0, 512), machine::Bytes(512));
    EXPECT_EQ(std::filesystem::file_size(copy.file()), kSize);
    EXPECT_EQ(copy.Describe().disks[0].signature, 0xABCD1234u);
}

TEST_F(DiskWrites, WriteFile_WritesSectorsAndTheTableIsReadAgain) {
    const TestImage image("machine-write-sectors.img", kSize);
    Start(image.Describe(R"(, "writable": true)"));
    const machine::Bytes record = BootRecord(0x99, {{0, 0x07, 2048, 2048}});
    DWORD written = 0;
    ASSERT_TRUE(machine_->kernel.WriteFile(handle_, record.data(), 512, &written, nullptr));
    EXPECT_EQ(written, 512u);
    EXPECT_EQ(disk().signature, 0x99u);
    EXPECT_FALSE(machine_->kernel.WriteFile(handle_, record.data(), 100, &written, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    OVERLAPPED beyond{};
    beyond.Offset = static_cast<DWORD>(kSize);
    EXPECT_FALSE(machine_->kernel.WriteFile(handle_, record.data(), 512, &written, &beyond));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SECTOR_NOT_FOUND});
}

TEST_F(DiskWrites, DeleteLayout_MakesTheDiskRaw) {
    const TestImage image("machine-write-delete.img", kSize);
    image.Write(0, BootRecord(0x99, {{0, 0x07, 2048, 2048}}));
    Start(image.Describe(R"(, "writable": true)"));
    ASSERT_EQ(Send(IOCTL_DISK_DELETE_DRIVE_LAYOUT, nullptr, 0), 0u);
    EXPECT_EQ(disk().style, std::uint32_t{PARTITION_STYLE_RAW});
    EXPECT_EQ(image.Describe().disks[0].style, std::uint32_t{PARTITION_STYLE_RAW});
}

TEST_F(DiskWrites, ImageThatCannotBeWritten_LeavesTheTable) {
    auto image = std::make_unique<TestImage>("machine-write-gone.img", kSize);
    Start(image->Describe(R"(, "writable": true)"));
    image.reset();
    EXPECT_EQ(Create(PARTITION_STYLE_MBR), DWORD{ERROR_WRITE_FAULT});
    EXPECT_EQ(disk().style, std::uint32_t{PARTITION_STYLE_RAW});
}

}  // namespace
}  // namespace machine_test

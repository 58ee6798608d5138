#include "machine/description/text.h"
#include "machine/image_support.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace machine_test {
namespace {

constexpr std::uint64_t kSize = 64ULL << 20;
constexpr std::uint64_t kSectors = kSize / 512;

// The published check value of the CRC-32 that GPT uses.
TEST(Crc32, OfTheStandardText_IsTheStandardValue) {
    const char text[] = "123456789";
    EXPECT_EQ(machine::Crc32(reinterpret_cast<const std::uint8_t*>(text), 9), 0xCBF43926u);
}

// A GPT, built here byte by byte from the format's definition.
class GptImage : public testing::Test {
protected:
    explicit GptImage() : image_("machine-gpt.img", kSize), entries_(128 * 128) {}

    void Entry(std::size_t index, const char* type, std::uint64_t first, std::uint64_t last,
               const wchar_t* name) {
        const std::size_t at = index * 128;
        machine::PutGuid(entries_, at, *machine::ParseGuid(type));
        machine::PutGuid(entries_, at + 16, machine::DerivedGuid("id " + std::to_string(index)));
        machine::Put64(entries_, at + 32, first);
        machine::Put64(entries_, at + 40, last);
        machine::Put64(entries_, at + 48, 0x8000000000000001);
        for (std::size_t i = 0; name[i] != 0; ++i) {
            machine::Put16(entries_, at + 56 + i * 2, static_cast<std::uint16_t>(name[i]));
        }
    }

    machine::Bytes Header(std::uint64_t own, std::uint64_t other, std::uint64_t entries_at) const {
        machine::Bytes header(512);
        const char signature[] = "EFI PART";
        std::copy_n(signature, 8, header.begin());
        machine::Put32(header, 8, 0x00010000);
        machine::Put32(header, 12, 92);
        machine::Put64(header, 24, own);
        machine::Put64(header, 32, other);
        machine::Put64(header, 40, 34);
        machine::Put64(header, 48, kSectors - 34);
        machine::PutGuid(header, 56, *machine::ParseGuid("{a0000000-0000-0000-0000-00000000000a}"));
        machine::Put64(header, 72, entries_at);
        machine::Put32(header, 80, 128);
        machine::Put32(header, 84, 128);
        machine::Put32(header, 88, machine::Crc32(entries_.data(), entries_.size()));
        machine::Put32(header, 16, machine::Crc32(header.data(), 92));
        return header;
    }

    void WriteAll() {
        image_.Write(0, BootRecord(0, {{0, 0xEE, 1, static_cast<std::uint32_t>(kSectors - 1)}}));
        image_.Write(512, Header(1, kSectors - 1, 2));
        image_.Write(1024, entries_);
        image_.Write((kSectors - 33) * 512, entries_);
        image_.Write((kSectors - 1) * 512, Header(kSectors - 1, 1, kSectors - 33));
    }

    void Damage(std::uint64_t offset) {
        machine::Bytes byte = image_.Read(offset, 1);
        byte[0] = static_cast<std::uint8_t>(byte[0] ^ 0x40);
        image_.Write(offset, byte);
    }

    std::uint32_t Style() { return image_.Describe().disks[0].style; }

    TestImage image_;
    machine::Bytes entries_;
};

const char kBasicData[] = "{ebd0a0a2-b9e5-4433-87c0-68b6b72699c7}";
const char kEfiSystem[] = "{c12a7328-f81f-11d2-ba4b-00a0c93ec93b}";

TEST_F(GptImage, UsedEntries_AreCountedAndUnusedSkipped) {
    Entry(0, kEfiSystem, 2048, 4095, L"EFI system partition");
    Entry(5, kBasicData, 8192, 16383, L"Daten \u00e4");
    Entry(127, kBasicData, 4096, 4097, L"");
    WriteAll();
    const machine::Description described = image_.Describe();
    const machine::Disk& disk = described.disks[0];
    EXPECT_EQ(disk.style, std::uint32_t{PARTITION_STYLE_GPT});
    EXPECT_EQ(machine::GuidText(disk.disk_id), "{a0000000-0000-0000-0000-00000000000a}");
    EXPECT_EQ(disk.starting_usable_offset, 34u * 512);
    EXPECT_EQ(disk.usable_length, (kSectors - 67) * 512);
    EXPECT_EQ(disk.max_partition_count, 128u);
    ASSERT_EQ(disk.partitions.size(), 3u);
    EXPECT_EQ(disk.partitions[0].number, 1u);
    EXPECT_EQ(disk.partitions[1].number, 2u);
    EXPECT_EQ(disk.partitions[1].offset, 8192u * 512);
    EXPECT_EQ(disk.partitions[1].length, 8192u * 512);
    EXPECT_EQ(disk.partitions[1].gpt_name, L"Daten \u00e4");
    EXPECT_EQ(disk.partitions[1].gpt_attributes, 0x8000000000000001u);
    EXPECT_EQ(machine::GuidText(disk.partitions[1].gpt_type), kBasicData);
    EXPECT_TRUE(IsEqualGUID(disk.partitions[1].id, machine::DerivedGuid("id 5")));
    EXPECT_EQ(disk.partitions[2].number, 3u);
    EXPECT_EQ(disk.partitions[2].length, 1024u);
}

TEST_F(GptImage, DamagedPrimary_IsReplacedByTheBackup) {
    Entry(0, kBasicData, 2048, 4095, L"one");
    WriteAll();
    for (const std::uint64_t offset : {512ULL, 512ULL + 16, 512ULL + 60, 1024ULL + 32}) {
        Damage(offset);
        const machine::Description described = image_.Describe();
        EXPECT_EQ(described.disks[0].style, std::uint32_t{PARTITION_STYLE_GPT}) << offset;
        EXPECT_EQ(described.disks[0].partitions.size(), 1u) << offset;
        Damage(offset);
    }
}

TEST_F(GptImage, BothDamaged_IsRaw) {
    Entry(0, kBasicData, 2048, 4095, L"one");
    WriteAll();
    Damage(512 + 60);
    Damage((kSectors - 1) * 512 + 60);
    EXPECT_EQ(Style(), std::uint32_t{PARTITION_STYLE_RAW});
}

TEST_F(GptImage, EntriesOfBothDamaged_IsRaw) {
    Entry(0, kBasicData, 2048, 4095, L"one");
    WriteAll();
    Damage(1024 + 32);
    Damage((kSectors - 33) * 512 + 32);
    EXPECT_EQ(Style(), std::uint32_t{PARTITION_STYLE_RAW});
}

TEST_F(GptImage, ProtectiveRecordAlone_IsRaw) {
    image_.Write(0, BootRecord(0, {{0, 0xEE, 1, 100000}}));
    EXPECT_EQ(Style(), std::uint32_t{PARTITION_STYLE_RAW});
}

TEST_F(GptImage, RecordThatProtectsOtherPartitionsToo_IsMbr) {
    Entry(0, kBasicData, 2048, 4095, L"one");
    WriteAll();
    image_.Write(0, BootRecord(3, {{0, 0xEE, 1, 2047}, {0, 0x07, 2048, 2048}}));
    EXPECT_EQ(Style(), std::uint32_t{PARTITION_STYLE_MBR});
}

TEST_F(GptImage, HeaderOfAnotherPlace_IsNotAccepted) {
    Entry(0, kBasicData, 2048, 4095, L"one");
    WriteAll();
    image_.Write(512, Header(2, kSectors - 1, 2));
    image_.Write((kSectors - 1) * 512, Header(1, 1, 2));
    EXPECT_EQ(Style(), std::uint32_t{PARTITION_STYLE_RAW});
}

TEST_F(GptImage, EntryCountThatClaimsTooMuch_IsNotAccepted) {
    WriteAll();
    for (const std::uint64_t own : {1ULL, static_cast<unsigned long long>(kSectors - 1)}) {
        machine::Bytes header = Header(own, 1, 2);
        machine::Put32(header, 80, 0x7FFFFFFF);
        machine::Put32(header, 16, 0);
        machine::Put32(header, 16, machine::Crc32(header.data(), 92));
        image_.Write(own * 512, header);
    }
    EXPECT_EQ(Style(), std::uint32_t{PARTITION_STYLE_RAW});
}

}  // namespace
}  // namespace machine_test

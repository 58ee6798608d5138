#include "machine/image_support.h"

#include <gtest/gtest.h>

namespace machine_test {
namespace {

constexpr std::uint64_t kSize = 64ULL << 20;

TEST(MbrImage, FourPrimaries_AreReadInSlotOrder) {
    const TestImage image("machine-mbr-primaries.img", kSize);
    image.Write(0, BootRecord(0xDEADBEEF, {{0x80, 0x07, 2048, 8192},
                                           {0, 0x0C, 40960, 2048},
                                           {0, 0x83, 10240, 4096},
                                           {0, 0x42, 16384, 100}}));
    const machine::Description described = image.Describe();
    const machine::Disk& disk = described.disks[0];
    EXPECT_EQ(disk.size, kSize);
    EXPECT_EQ(disk.style, std::uint32_t{PARTITION_STYLE_MBR});
    EXPECT_EQ(disk.signature, 0xDEADBEEFu);
    ASSERT_EQ(disk.partitions.size(), 4u);
    EXPECT_EQ(disk.partitions[0].offset, 2048u * 512);
    EXPECT_EQ(disk.partitions[0].length, 8192u * 512);
    EXPECT_TRUE(disk.partitions[0].active);
    EXPECT_TRUE(disk.partitions[0].recognized);
    EXPECT_EQ(disk.partitions[0].hidden_sectors, 2048u);
    EXPECT_EQ(disk.partitions[1].number, 2u);
    EXPECT_EQ(disk.partitions[1].offset, 40960u * 512);
    EXPECT_FALSE(disk.partitions[2].recognized);
    EXPECT_EQ(disk.partitions[3].number, 4u);
    EXPECT_EQ(disk.partitions[3].mbr_type, 0x42);
}

TEST(MbrImage, ExtendedChain_IsFollowed) {
    const TestImage image("machine-mbr-extended.img", kSize);
    image.Write(0, BootRecord(1, {{0, 0x07, 2048, 2048}, {0, 0x0F, 8192, 65536}}));
    image.Write(8192 * 512, BootRecord(0, {{0, 0x07, 2048, 4096}, {0, 0x05, 10000, 4000}}));
    image.Write((8192 + 10000) * 512, BootRecord(0, {{0, 0x0B, 63, 3000}, {0, 0x05, 20000, 2000}}));
    image.Write((8192 + 20000) * 512, BootRecord(0, {{0, 0x07, 128, 1500}}));
    const machine::Description described = image.Describe();
    const auto& partitions = described.disks[0].partitions;
    ASSERT_EQ(partitions.size(), 16u);
    EXPECT_EQ(partitions[1].number, 0u);
    EXPECT_EQ(partitions[4].number, 2u);
    EXPECT_EQ(partitions[4].offset, (8192u + 2048) * 512);
    EXPECT_EQ(partitions[4].hidden_sectors, 2048u);
    EXPECT_EQ(partitions[5].number, 0u);
    EXPECT_EQ(partitions[5].offset, (8192u + 10000) * 512);
    EXPECT_EQ(partitions[8].number, 3u);
    EXPECT_EQ(partitions[8].offset, (8192u + 10000 + 63) * 512);
    EXPECT_EQ(partitions[8].length, 3000u * 512);
    EXPECT_EQ(partitions[12].number, 4u);
    EXPECT_EQ(partitions[12].offset, (8192u + 20000 + 128) * 512);
    EXPECT_EQ(partitions[13].mbr_type, 0);
}

TEST(MbrImage, ChainThatLoops_Ends) {
    const TestImage image("machine-mbr-loop.img", kSize);
    image.Write(0, BootRecord(1, {{0, 0x05, 8192, 65536}}));
    image.Write(8192 * 512, BootRecord(0, {{0, 0x07, 2048, 4096}, {0, 0x05, 0, 4000}}));
    EXPECT_EQ(image.Describe().disks[0].partitions.size(), 8u);
}

TEST(MbrImage, ChainBeyondTheDisk_Ends) {
    const TestImage image("machine-mbr-beyond.img", kSize);
    image.Write(0, BootRecord(1, {{0, 0x05, 8192, 65536}}));
    image.Write(8192 * 512, BootRecord(0, {{0, 0x07, 2048, 4096}, {0, 0x05, 0x7FFFFFFF, 4000}}));
    EXPECT_EQ(image.Describe().disks[0].partitions.size(), 8u);
}

TEST(MbrImage, EmptyExtended_HasNoLogicals) {
    const TestImage image("machine-mbr-empty.img", kSize);
    image.Write(0, BootRecord(1, {{0, 0x05, 8192, 65536}}));
    EXPECT_EQ(image.Describe().disks[0].partitions.size(), 4u);
}

TEST(MbrImage, NoBootSignature_IsRaw) {
    const TestImage image("machine-mbr-raw.img", kSize);
    const machine::Description described = image.Describe();
    EXPECT_EQ(described.disks[0].style, std::uint32_t{PARTITION_STYLE_RAW});
    EXPECT_TRUE(described.disks[0].partitions.empty());
}

TEST(MbrImage, BootSectorWithoutTable_IsRaw) {
    const TestImage image("machine-mbr-code.img", kSize);
    image.Write(0, BootRecord(1, {{0x33, 0x07, 2048, 2048}}));
    EXPECT_EQ(image.Describe().disks[0].style, std::uint32_t{PARTITION_STYLE_RAW});
}

TEST(MbrImage, SectorSize_ScalesTheTable) {
    const TestImage image("machine-mbr-4k.img", kSize);
    image.Write(0, BootRecord(7, {{0, 0x07, 256, 1024}}, 4096));
    const machine::Description described = image.Describe(R"(, "bytesPerSector": 4096)");
    EXPECT_EQ(described.disks[0].partitions[0].offset, 256u * 4096);
    EXPECT_EQ(described.disks[0].partitions[0].length, 1024u * 4096);
}

TEST(MbrImage, MissingFile_IsRefusedWithItsPlace) {
    try {
        machine::ParseDescription(R"({"disks": [{"index": 0, "image": "no-such.img"}]})", "a.json");
        FAIL() << "must be refused";
    } catch (const machine::DescriptionError& error) {
        EXPECT_EQ(error.file(), "a.json");
        EXPECT_EQ(error.path(), "/disks/0/image");
    }
}

TEST(MbrImage, ImageWithATable_CannotAlsoBeDescribed) {
    const TestImage image("machine-mbr-both.img", kSize);
    EXPECT_THROW(image.Describe(R"(, "partitions": [])"), machine::DescriptionError);
    EXPECT_THROW(image.Describe(R"(, "writable": true, "writeTo": "x.img")"), machine::DescriptionError);
}

}  // namespace
}  // namespace machine_test

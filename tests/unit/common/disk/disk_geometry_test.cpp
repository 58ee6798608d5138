#include "common/disk/disk_geometry.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace bmr_common {
namespace {

constexpr std::size_t kPartitionRecord = 32;  // offset; the geometry and the disk size precede it

// 32 bytes of geometry and size, a partition record of 24 bytes, and a detection record of 64 bytes.
win::ByteBuffer WholeAnswer(std::uint32_t partition_record_bytes = 24) {
    win::ByteBuffer bytes(kPartitionRecord + partition_record_bytes + sizeof(DISK_DETECTION_INFO));
    DISK_GEOMETRY geometry{};
    geometry.Cylinders.QuadPart = 60801;
    geometry.MediaType = FixedMedia;
    geometry.TracksPerCylinder = 255;
    geometry.SectorsPerTrack = 63;
    geometry.BytesPerSector = 512;
    const std::int64_t size = 500107862016;
    DISK_PARTITION_INFO record{};
    record.SizeOfPartitionInfo = partition_record_bytes;
    record.PartitionStyle = PARTITION_STYLE_MBR;
    record.Mbr.Signature = 0xDEADBEEF;
    record.Mbr.CheckSum = 0x12345678;
    DISK_DETECTION_INFO detection{};
    detection.SizeOfDetectInfo = sizeof(detection);
    detection.DetectionType = DetectExInt13;
    detection.ExInt13.ExSectorsPerDrive = 976773168;
    std::memcpy(bytes.data(), &geometry, sizeof(geometry));
    std::memcpy(bytes.data() + 24, &size, sizeof(size));
    std::memcpy(bytes.data() + kPartitionRecord, &record, sizeof(record));
    std::memcpy(bytes.data() + kPartitionRecord + partition_record_bytes, &detection, sizeof(detection));
    return bytes;
}

TEST(DiskGeometryTest, WholeAnswer_EveryPartIsRead) {
    const DiskGeometry geometry(WholeAnswer());

    EXPECT_EQ(60801, geometry.geometry().Cylinders.QuadPart);
    EXPECT_EQ(12U, geometry.media_type());
    EXPECT_EQ(512U, geometry.geometry().BytesPerSector);
    EXPECT_EQ(500107862016, geometry.disk_size());
    EXPECT_EQ(0U, geometry.partition_style());
    EXPECT_EQ(0xDEADBEEFU, geometry.signature());
    EXPECT_EQ(2U, geometry.detection_type());
    EXPECT_EQ(976773168U, geometry.detection().ExInt13.ExSectorsPerDrive);
}

TEST(DiskGeometryTest, LongerPartitionRecord_DetectionLiesBehindIt) {
    const DiskGeometry geometry(WholeAnswer(40));

    EXPECT_EQ(2U, geometry.detection_type());
    EXPECT_EQ(976773168U, geometry.detection().ExInt13.ExSectorsPerDrive);
}

TEST(DiskGeometryTest, NoDetectionRecord_ReadsAsNone) {
    win::ByteBuffer bytes = WholeAnswer();
    bytes.resize(kPartitionRecord + 24);

    EXPECT_EQ(0U, DiskGeometry(bytes).detection_type());
}

TEST(DiskGeometryTest, CutDetectionRecord_ReadsZerosBehindTheCut) {
    win::ByteBuffer bytes = WholeAnswer();
    bytes.resize(kPartitionRecord + 24 + 8);

    const DiskGeometry geometry(bytes);

    EXPECT_EQ(2U, geometry.detection_type());
    EXPECT_EQ(0U, geometry.detection().ExInt13.ExSectorsPerDrive);
}

TEST(DiskGeometryTest, LyingPartitionRecordSize_ReadsNoDetection) {
    for (const std::uint32_t lie : {89U, 4096U, 0xFFFFFFFFU}) {
        win::ByteBuffer bytes = WholeAnswer();
        std::memcpy(bytes.data() + kPartitionRecord, &lie, sizeof(lie));
        EXPECT_EQ(0U, DiskGeometry(bytes).detection_type()) << lie;
    }
}

TEST(DiskGeometryTest, NoBytes_ReadsZeros) {
    const DiskGeometry geometry;

    EXPECT_EQ(0, geometry.disk_size());
    EXPECT_EQ(0U, geometry.signature());
    EXPECT_EQ(0U, geometry.detection_type());
}

TEST(DiskGeometryTest, ForFreshTable_KeepsTheShapeAndClearsTheRest) {
    const win::ByteBuffer source = WholeAnswer();

    const DiskGeometry fresh = DiskGeometry(source).ForFreshTable(PARTITION_STYLE_GPT);

    ASSERT_EQ(120U, fresh.bytes().size());
    EXPECT_EQ(0, std::memcmp(source.data(), fresh.bytes().data(), kPartitionRecord));
    const std::uint32_t words[] = {24, 1};
    EXPECT_EQ(0, std::memcmp(words, fresh.bytes().data() + kPartitionRecord, sizeof(words)));
    EXPECT_EQ(win::ByteBuffer(80), win::ByteBuffer(fresh.bytes().begin() + 40, fresh.bytes().end()));
}

}  // namespace
}  // namespace bmr_common

#include "common/disk/disk_drive_manager_factory.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::Machine;
using support::Info;
using testing::ElementsAre;

using Lines = std::vector<support::LogLine>;

constexpr const char* kMbrDisk = R"({"disks": [{"index": 1, "size": "8 GiB", "signature": 439041101,
    "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": "ntfs"}]}]})";
constexpr const char* kEmptyMbrDisk = R"({"disks": [{"index": 10, "size": "8 GiB", "signature": 7}]})";
constexpr const char* kRawDisk = R"({"disks": [{"index": 5, "size": "8 GiB", "bytesPerSector": 4096,
    "mediaType": "removable", "geometry": {"cylinders": 130, "tracksPerCylinder": 255, "sectorsPerTrack": 63}}]})";

class DiskOutputTest : public testing::Test {
protected:
    static DiskDriveManagerPtr DiskOf(const std::string& json) {
        Machine machine(json);
        return DiskDriveManagerFactory().CreateAndInitialize(machine.disk().index);
    }

    // The MBR disk with a detection record.
    static DiskDriveManagerPtr DetectedDisk(const std::string& detection) {
        std::string json = kMbrDisk;
        json.replace(json.find("\"partitions\""), 0, "\"detection\": " + detection + ", ");
        return DiskOf(json);
    }

    Lines DumpOf(const DiskDriveManagerPtr& disk) {
        log_.Clear();
        disk->DumpInfo();
        return log_.Messages();
    }

    // The lines from `first` up to, but not including, `next`.
    static Lines Between(const Lines& lines, const std::string& first, const std::string& next) {
        const auto begin = std::find(lines.begin(), lines.end(), Info(first));
        return {begin, std::find(begin, lines.end(), Info(next))};
    }

    static std::vector<std::string> ElementsOf(const DiskDriveManagerPtr& disk) {
        return captured::Elements([&](CMSXmlNode& node) { disk->CaptureInfo(node); });
    }

    // The elements from `first` up to, but not including, `next`.
    static std::vector<std::string> Between(const std::vector<std::string>& elements,
                                            const std::string& first, const std::string& next) {
        const auto begin = std::find(elements.begin(), elements.end(), first);
        return {begin, std::find(begin, elements.end(), next)};
    }

    support::LoggerCapture log_;
};

TEST_F(DiskOutputTest, Dump_RefusedByItsTable_GivesTheTablesReason) {
    const std::string reason = " All partitions are marked as unused entry - cannot backup disk 10";

    EXPECT_THAT(Between(DumpOf(DiskOf(kEmptyMbrDisk)), "Disk id: 10", "  Dynamic disk: False"),
                ElementsAre(Info("Disk id: 10"), Info(reason), Info("  Available for backup: False"),
                            Info("    Failure reason: " + reason)));
}

TEST_F(DiskOutputTest, Dump_Int13_WritesItsFiveNumbers) {
    const DiskDriveManagerPtr disk =
        DetectedDisk(R"({"type": "int13", "driveSelect": 128, "maxCylinders": 1023,
        "sectorsPerTrack": 62, "maxHeads": 254, "numberDrives": 2})");

    EXPECT_THAT(
        Between(DumpOf(disk), "  DetectionType: 1", "  Partition Style: MBR"),
        ElementsAre(Info("  DetectionType: 1"), Info("  DriveSelect: 128"), Info("  MaxCylinders: 1023"),
                    Info("  SectorsPerTrack: 62"), Info("  MaxHeads: 254"), Info("  NumberDrives: 2")));
    EXPECT_THAT(Between(ElementsOf(disk), "DetectionType=1", "PartitionStyle=0"),
                ElementsAre("DetectionType=1", "DriveSelect=128", "MaxCylinders=1023", "SectorsPerTrack=62",
                            "MaxHeads=254", "NumberDrives=2"));
}

TEST_F(DiskOutputTest, Dump_ExtendedInt13_WritesItsEightNumbersTheSectorsCut) {
    const DiskDriveManagerPtr disk = DetectedDisk(R"({"type": "exint13", "exBufferSize": 30, "exFlags": 7,
        "exCylinders": 16383, "exHeads": 16, "exSectorsPerTrack": 61, "exSectorsPerDrive": 4294967301,
        "exSectorSize": 512, "exReserved": 9})");

    EXPECT_THAT(
        Between(DumpOf(disk), "  DetectionType: 2", "  Partition Style: MBR"),
        ElementsAre(Info("  DetectionType: 2"), Info("  ExBufferSize: 30"), Info("  ExFlags: 7"),
                    Info("  ExCylinders: 16383"), Info("  ExHeads: 16"), Info("  ExSectorsPerTrack: 61"),
                    Info("  ExSectorsPerDrive: 5"), Info("  ExSectorSize: 512"), Info("  ExReserved: 9")));
    EXPECT_THAT(Between(ElementsOf(disk), "DetectionType=2", "PartitionStyle=0"),
                ElementsAre("DetectionType=2", "ExBufferSize=30", "ExFlags=7", "ExCylinders=16383",
                            "ExHeads=16", "ExSectorsPerTrack=61", "ExSectorsPerDrive=4294967301",
                            "ExSectorSize=512", "ExReserved=9"));
}

TEST_F(DiskOutputTest, Dump_OtherDetectionType_WritesItsNumberOnly) {
    const DiskDriveManagerPtr disk = DetectedDisk(R"({"type": 3, "driveSelect": 128, "exFlags": 7})");

    EXPECT_THAT(Between(DumpOf(disk), "  DetectionType: 3", "  Partition Style: MBR"),
                ElementsAre(Info("  DetectionType: 3")));
    EXPECT_THAT(Between(ElementsOf(disk), "DetectionType=3", "PartitionStyle=0"),
                ElementsAre("DetectionType=3"));
}

TEST_F(DiskOutputTest, Capture_RawOrEmptyDisk_WritesIdAndSizeZeroOnly) {
    EXPECT_THAT(ElementsOf(DiskOf(kRawDisk)), ElementsAre("DiskId=5", "DiskSize=0"));
    EXPECT_THAT(ElementsOf(DiskOf(kEmptyMbrDisk)), ElementsAre("DiskId=10", "DiskSize=0"));
}

}  // namespace
}  // namespace bmr_common

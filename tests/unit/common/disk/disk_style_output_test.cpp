// Output of partition styles that no disk which can be backed up has. The tests use a disk class that can
// always be backed up.

#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"

#include <gmock/gmock.h>

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Info;
using testing::ElementsAre;

class AcceptedDisk : public DiskDriveManagerUnknown {
public:
    using DiskDriveManagerUnknown::DiskDriveManagerUnknown;
    bool can_backup(std::vector<std::wstring>& /*reasons*/) const override { return true; }
    bool is_dynamic() const override { return true; }
};

// An 8 GiB disk with this style in its partition record and without a detection record.
win::ByteBuffer GeometryOfStyle(std::uint32_t style) {
    DISK_GEOMETRY_EX header{};
    header.Geometry.Cylinders.QuadPart = 1044;
    header.Geometry.MediaType = FixedMedia;
    header.Geometry.TracksPerCylinder = 255;
    header.Geometry.SectorsPerTrack = 63;
    header.Geometry.BytesPerSector = 512;
    header.DiskSize.QuadPart = 8589934592;
    DISK_PARTITION_INFO record{};
    record.SizeOfPartitionInfo = sizeof(record);
    std::memcpy(&record.PartitionStyle, &style, sizeof(style));
    win::ByteBuffer bytes(offsetof(DISK_GEOMETRY_EX, Data) + sizeof(record));
    std::memcpy(bytes.data(), &header, offsetof(DISK_GEOMETRY_EX, Data));
    std::memcpy(bytes.data() + offsetof(DISK_GEOMETRY_EX, Data), &record, sizeof(record));
    return bytes;
}

struct StyleCase {
    std::uint32_t style;
    const char* element;
    const char* line;
};

std::ostream& operator<<(std::ostream& out, const StyleCase& test_case) {
    return out << test_case.style;
}

class DiskStyleOutput : public testing::TestWithParam<StyleCase> {
protected:
    DiskStyleOutput() { disk_.Initialize(UniqueFile(), GeometryOfStyle(GetParam().style)); }

    support::LoggerCapture log_;
    AcceptedDisk disk_{4};
};

TEST_P(DiskStyleOutput, Capture_AcceptedDisk_NamesTheStyleAndNothingOfATable) {
    EXPECT_THAT(captured::Elements([&](CMSXmlNode& node) { disk_.CaptureInfo(node); }),
                ElementsAre("DiskId=4", "DynamicDisk=True", "DiskSize=8589934592", "Cyclinders=1044",
                            "MediaType=12", "TracksPerCylinder=255", "SectorsPerTrack=63",
                            "bytes_per_sector=512", GetParam().element, "DetectionType=0"));
}

TEST_P(DiskStyleOutput, Dump_AcceptedDisk_NamesTheStyleAndThatItIsNotSupported) {
    disk_.DumpInfo();

    const std::vector<support::LogLine> lines = log_.Messages();
    EXPECT_THAT(lines,
                testing::IsSupersetOf({Info("  Available for backup: True"), Info("  Dynamic disk: True")}));
    ASSERT_GE(lines.size(), 3U);
    EXPECT_THAT(std::vector<support::LogLine>(lines.end() - 3, lines.end()),
                ElementsAre(Info("  DetectionType: 0"), Info(GetParam().line),
                            Info("The application does not support this partition style.")));
}

INSTANTIATE_TEST_SUITE_P(
    Styles, DiskStyleOutput,
    testing::Values(StyleCase{2, "PartitionStyle=RAW", "  Partition Style: RAW"},
                    StyleCase{3, "PartitionStyle=UNKNOWN", "  Partition Style: UNKNOWN (3)"},
                    StyleCase{7, "PartitionStyle=UNKNOWN", "  Partition Style: UNKNOWN (7)"},
                    StyleCase{0xFFFFFFFF, "PartitionStyle=UNKNOWN", "  Partition Style: UNKNOWN (-1)"}));

}  // namespace
}  // namespace bmr_common

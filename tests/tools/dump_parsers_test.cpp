#include "tools/orvane/dump_parsers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>

namespace {

using host::DiskDumpParser;
using host::DiskVerdict;
using host::LogMessage;
using host::VolumeDumpParser;
using host::VolumeVerdict;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

template <class Parser>
auto ResultOf(std::initializer_list<const char*> lines) {
    Parser parser;
    for (const char* line : lines) {
        parser.Take({ORVANE_LEVEL_INFORMATION, line});
    }
    return parser.Result();
}

const auto kDisks = ResultOf<DiskDumpParser>;
const auto kVolumes = ResultOf<VolumeDumpParser>;

TEST(DiskDumpParser, NoLines_IsNoResult) {
    EXPECT_FALSE(kDisks({}));
    EXPECT_FALSE(kDisks({"", "[Device Information]"}));
}

TEST(DiskDumpParser, NoDisks_IsAnEmptyList) {
    EXPECT_THAT(kDisks({"", "[Device Information]", "Number of Disks: 0"}), Optional(IsEmpty()));
}

TEST(DiskDumpParser, Disks_AreReadInOrder) {
    EXPECT_THAT(kDisks({"",
                        "[Device Information]",
                        "Number of Disks: 3",  //
                        "",
                        "[Disk/Partition Information]",
                        "Disk id: 0",
                        "  Available for backup: True",
                        "  Dynamic disk: False",
                        "  Disk Size: 512110190592(476.94 GB)",
                        "  Cyclinders: 62260",
                        "  Partition Style: GPT",
                        "    DiskId: {6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1}",
                        "",
                        "[Disk/Partition Information]",
                        "Disk id: 10",
                        "  Available for backup: False",
                        "    Failure reason: Unknown disk partition style 2",
                        "  Dynamic disk: False",
                        "  Disk Size: 1000204886016(931.51 GB)",
                        "  Partition Style: RAW",
                        "The application does not support this partition style.",  //
                        "",
                        "[Disk/Partition Information]",
                        "Disk id: 2",
                        "  Available for backup: False",
                        "    Failure reason: Failed to open hard disk 2 error: 5",
                        "    Failure reason: another",
                        "operation Getting Drive Geometry has not attempted",
                        "The application does not support this partition style."}),
                Optional(ElementsAre(
                    DiskVerdict{0, "476.94 GB", {true, {}}},
                    DiskVerdict{10, "931.51 GB", {false, {"Unknown disk partition style 2"}}},
                    DiskVerdict{2, "", {false, {"Failed to open hard disk 2 error: 5", "another"}}})));
}

TEST(DiskDumpParser, LinesOfTheJudgementBeforeItsAnswer_AreNoReasons) {
    EXPECT_THAT(
        kDisks({"Number of Disks: 1", "[Disk/Partition Information]", "Disk id: 1",
                " All partitions are marked as unused entry - cannot backup disk 1",
                "  Available for backup: False",
                "    Failure reason:  All partitions are marked as unused entry - cannot backup disk 1"}),
        Optional(ElementsAre(DiskVerdict{
            1, "", {false, {" All partitions are marked as unused entry - cannot backup disk 1"}}})));
}

TEST(DiskDumpParser, NamesOfPartitions_AreNoOtherLines) {
    EXPECT_THAT(kDisks({"Number of Disks: 1", "[Disk/Partition Information]", "Disk id: 1",
                        "  Available for backup: True", "  Disk Size: 1024(0.00 GB)", "    Name: Disk id: 7",
                        "    Name: [Disk/Partition Information]", "    Name:   Available for backup: False",
                        "    Failure reason: of a partition's name"}),
                Optional(ElementsAre(DiskVerdict{1, "0.00 GB", {true, {}}})));
}

TEST(DiskDumpParser, OtherLevels_AreNotRead) {
    DiskDumpParser parser;
    parser.Take({ORVANE_LEVEL_TRACE, "Number of Disks: 3"});
    parser.Take({ORVANE_LEVEL_INFORMATION, "Number of Disks: 0"});
    parser.Take({ORVANE_LEVEL_ERROR, "[Disk/Partition Information]"});
    EXPECT_THAT(parser.Result(), Optional(IsEmpty()));
}

TEST(DiskDumpParser, FewerDisksThanAnnounced_IsNoResult) {
    EXPECT_FALSE(kDisks({"Number of Disks: 2", "[Disk/Partition Information]", "Disk id: 0",
                         "  Available for backup: True"}));
}

TEST(DiskDumpParser, DiskWithoutAnAnswer_IsNoResult) {
    EXPECT_FALSE(kDisks({"Number of Disks: 1", "[Disk/Partition Information]", "Disk id: 0"}));
}

TEST(VolumeDumpParser, FailedCollection_IsNoResult) {
    EXPECT_FALSE(kVolumes({"============ Preparing volume(s) information ============",
                           "============ Finish preparing volume(s) ============"}));
}

TEST(VolumeDumpParser, NoVolumes_IsAnEmptyList) {
    EXPECT_THAT(kVolumes({"[Volume Information]", "Number of volumes: 0", "All volumes can be backed up"}),
                Optional(IsEmpty()));
}

TEST(VolumeDumpParser, Volumes_AreReadInOrder) {
    EXPECT_THAT(
        kVolumes({"[Volume Information]",
                  "Number of volumes: 2",  //
                  "Volume #1",
                  "Volume ID: \\\\?\\Volume{a}\\",
                  "Volume GUID: \\\\?\\Volume{a}\\",
                  "Device name: \\Device\\HarddiskVolume3",
                  "Volume available for backup: True",
                  "Drive type: fixed drive",
                  "Drive letter/Mount points: ",
                  "  C:\\",
                  "  D:\\Data\\",
                  "Serial number: 0x1",
                  "Volume Label: Windows",
                  "Number of disk extents: 2",
                  "  Disk number: 0",
                  "  --------------------------------",
                  "",  //
                  "Volume #2",
                  "Volume ID: ",
                  "Volume GUID: ",
                  "Device name: \\Device\\HarddiskVolume4",
                  "Volume available for backup: False",
                  "  Failure reason: Failed to open volume",
                  "  Failure reason: Failed to get mount points",
                  "Drive type: fixed drive",
                  "Error: failed to obtain mount points information",
                  "Error: failed to obtain volume information",
                  "",
                  "============ Volume(s) available for backup summary ============="}),
        Optional(ElementsAre(
            VolumeVerdict{
                "\\\\?\\Volume{a}\\", "\\Device\\HarddiskVolume3", {"C:\\", "D:\\Data\\"}, {true, {}}},
            VolumeVerdict{"",
                          "\\Device\\HarddiskVolume4",
                          {},
                          {false, {"Failed to open volume", "Failed to get mount points"}}})));
}

TEST(VolumeDumpParser, NamesThatLookLikeLines_AreNames) {
    EXPECT_THAT(
        kVolumes({"Number of volumes: 1", "Volume #1", "Volume ID: v", "Volume GUID: Device name: no",
                  "Device name: d", "Volume available for backup: True", "Drive type: fixed drive",
                  "Drive letter/Mount points: ", "  Volume #2", "    Failure reason: x\\",
                  "  Volume available for backup: False", "Serial number: 0x1", "Volume Label: Volume #2",
                  "Volume Label:   Failure reason: y", "  Disk number: 0"}),
        Optional(ElementsAre(
            VolumeVerdict{"v",
                          "d",
                          {"Volume #2", "  Failure reason: x\\", "Volume available for backup: False"},
                          {true, {}}})));
}

TEST(VolumeDumpParser, MountPointThatTheLogCannotExpress_LeavesAMark) {
    VolumeDumpParser parser;
    for (const char* line : {"Number of volumes: 1", "Volume #1", "Volume ID: v", "Device name: d",
                             "Volume available for backup: True", "Drive letter/Mount points: ", "  C:\\"}) {
        parser.Take({ORVANE_LEVEL_INFORMATION, line});
    }
    parser.Take({ORVANE_LEVEL_WARNING, "ASSERTION FAILED, src/common/logger:79 !err"});
    parser.Take({ORVANE_LEVEL_INFORMATION, "Serial number: 0x1"});
    parser.Take({ORVANE_LEVEL_WARNING, "ASSERTION FAILED, src/common/logger:79 !err"});  // the label
    EXPECT_THAT(parser.Result(), Optional(ElementsAre(VolumeVerdict{"v", "d", {"C:\\", "?"}, {true, {}}})));
}

TEST(VolumeDumpParser, LinesOfTheCollection_AreNotRead) {
    EXPECT_THAT(kVolumes({"Volume #1", "Volume ID: no", "[Volume Information]", "Number of volumes: 0"}),
                Optional(IsEmpty()));
}

TEST(VolumeDumpParser, RefusalsInTheSummary_AreNotRead) {
    VolumeDumpParser parser;
    for (const char* line : {"Number of volumes: 1", "Volume #1", "Volume ID: v", "Device name: d",
                             "Volume available for backup: False", "  Failure reason: one",
                             "Drive letter/Mount points: ", "Error: failed to obtain volume information"}) {
        parser.Take({ORVANE_LEVEL_INFORMATION, line});
    }
    parser.Take({ORVANE_LEVEL_ERROR, "Volume v cannot be backed up because:"});
    parser.Take({ORVANE_LEVEL_ERROR, "one"});
    EXPECT_THAT(parser.Result(), Optional(ElementsAre(VolumeVerdict{"v", "d", {}, {false, {"one"}}})));
}

TEST(VolumeDumpParser, FewerVolumesThanAnnounced_IsNoResult) {
    EXPECT_FALSE(kVolumes({"Number of volumes: 2", "Volume #1", "Volume ID: v", "Device name: d",
                           "Volume available for backup: True"}));
}

TEST(VolumeDumpParser, VolumeWithoutAnAnswer_IsNoResult) {
    EXPECT_FALSE(kVolumes({"Number of volumes: 1", "Volume #1", "Volume ID: v", "Device name: d"}));
}

}  // namespace

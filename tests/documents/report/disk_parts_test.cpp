#include "documents/report/disk_parts.h"

#include "tests/documents/report/made_machines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace documents {

namespace {

using testing::ElementsAre;

// "partition 1, 1048576 + 512, C:\\"
std::string Description(PartKind kind, const Range& place, std::uint32_t partition,
                        const std::string& letter) {
    const std::vector<std::string> kinds = {"partition", "volume", "gap", "undescribed"};
    return kinds.at(static_cast<std::size_t>(kind)) + ' ' + std::to_string(partition) + ", " +
           std::to_string(place.start) + " + " + std::to_string(place.length) + ", " + letter;
}

MATCHER_P(Is, description, description) {
    const std::string actual = Description(arg.kind, arg.place, arg.partition == nullptr ? 0 : arg.number,
                                           arg.extent ? *arg.extent->volume->letter : "");
    *result_listener << actual;
    return actual == description;
}

// A partition of 0 is none, an empty letter no volume.
auto Part(PartKind kind, Range place, std::uint32_t partition = 0, const char* letter = "") {
    return Is(Description(kind, place, partition, letter));
}

class DiskParts : public testing::Test {
protected:
    std::vector<DiskPart> Parts(const Disk& disk) {
        machine_.disks = {disk};
        extents_.emplace(machine_);
        return PartsOf(machine_.disks.front(), *extents_);
    }

    Machine machine_;
    std::optional<ExtentsByDisk> extents_;
};

TEST_F(DiskParts, PartitionsAndGaps_AreInOrderOfTheirOffsets) {
    Disk disk = MadeDisk(0, 100 * kGiB, Style::kMbr);
    disk.partitions = {MbrPartition({50 * kGiB, 40 * kGiB}, 7), MbrPartition({kMiB, 50 * kGiB - kMiB}, 7)};
    disk.gaps = {Gap{{90 * kGiB, 10 * kGiB}, false}};
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kPartition, {kMiB, 50 * kGiB - kMiB}, 1),
                                         Part(PartKind::kPartition, {50 * kGiB, 40 * kGiB}, 2),
                                         Part(PartKind::kGap, {90 * kGiB, 10 * kGiB})));
}

TEST_F(DiskParts, BasicVolume_TakesItsWholePartition) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kMbr);
    disk.partitions = {MbrPartition({kMiB, 10 * kGiB - kMiB}, 7)};
    machine_.volumes = {MadeVolume("C:\\", {MadeExtent(0, {kMiB, 9 * kGiB})})};
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kPartition, {kMiB, 10 * kGiB - kMiB}, 1, "C:\\")));
}

TEST_F(DiskParts, DynamicPartition_IsDividedAmongItsVolumes) {
    constexpr std::uint8_t kDynamic = 0x42;
    Disk disk = MadeDisk(1, 100 * kGiB, Style::kMbr);
    disk.partitions = {MbrPartition({kMiB, 90 * kGiB}, kDynamic)};
    machine_.volumes = {MadeVolume("S:\\", {MadeExtent(1, {40 * kGiB, 20 * kGiB})}),
                        MadeVolume("T:\\", {MadeExtent(1, {2 * kMiB, 30 * kGiB})})};
    EXPECT_THAT(Parts(disk),
                ElementsAre(Part(PartKind::kPartition, {2 * kMiB, 30 * kGiB}, 1, "T:\\"),
                            Part(PartKind::kPartition, {30 * kGiB + 2 * kMiB, 10 * kGiB - 2 * kMiB}, 1),
                            Part(PartKind::kPartition, {40 * kGiB, 20 * kGiB}, 1, "S:\\"),
                            Part(PartKind::kPartition, {60 * kGiB, 30 * kGiB + kMiB}, 1),
                            Part(PartKind::kGap, {90 * kGiB + kMiB, 10 * kGiB - kMiB})));
}

TEST_F(DiskParts, VolumesInOnePlace_AreOnePartOfTheMountedOne) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kMbr);
    const Range place = {kMiB, 10 * kGiB - kMiB};
    disk.partitions = {MbrPartition(place, 7)};
    machine_.volumes = {MadeVolume("", {MadeExtent(0, place)}), MadeVolume("C:\\", {MadeExtent(0, place)}),
                        MadeVolume("", {MadeExtent(0, place)})};
    const std::vector<DiskPart> parts = Parts(disk);
    EXPECT_THAT(parts, ElementsAre(Part(PartKind::kPartition, place, 1, "C:\\")));
    EXPECT_THAT(parts.front().others, testing::SizeIs(2));
}

TEST_F(DiskParts, TableThatIsLeftOut_ShowsTheVolumes) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kGpt);
    disk.partitions.reset();
    machine_.volumes = {MadeVolume("C:\\", {MadeExtent(0, {2 * kGiB, 3 * kGiB})})};
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kUndescribed, {0, 2 * kGiB}),
                                         Part(PartKind::kVolume, {2 * kGiB, 3 * kGiB}, 0, "C:\\"),
                                         Part(PartKind::kUndescribed, {5 * kGiB, 5 * kGiB})));
}

TEST_F(DiskParts, NothingSaidOfTheContent_HasNoParts) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kGpt);
    disk.partitions.reset();
    EXPECT_THAT(Parts(disk), ElementsAre());
}

TEST_F(DiskParts, EmptyTable_IsOneGap) {
    EXPECT_THAT(Parts(MadeDisk(0, 10 * kGiB, Style::kGpt)),
                ElementsAre(Part(PartKind::kGap, {0, 10 * kGiB})));
}

TEST_F(DiskParts, VolumeOfADiskWithoutATable_ReplacesTheGap) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kRaw);
    disk.gaps = {Gap{{0, 10 * kGiB}, false}};
    machine_.volumes = {MadeVolume("E:\\", {MadeExtent(0, {0, 8 * kGiB})})};
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kVolume, {0, 8 * kGiB}, 0, "E:\\"),
                                         Part(PartKind::kGap, {8 * kGiB, 2 * kGiB})));
}

TEST_F(DiskParts, AtMostAMiBWithoutAPartition_IsLeftOut) {
    Disk disk = MadeDisk(0, 10 * kGiB + 2 * kMiB, Style::kMbr);
    disk.partitions = {MbrPartition({kMiB, 10 * kGiB}, 7)};
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kPartition, {kMiB, 10 * kGiB}, 1)));
    disk.partitions->front().place.start += 1;
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kGap, {0, kMiB + 1}),
                                         Part(PartKind::kPartition, {kMiB + 1, 10 * kGiB}, 1)));
}

TEST_F(DiskParts, ExtendedPartition_MarksWhatIsInIt) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kMbr);
    disk.partitions = {MbrPartition({kMiB, 2 * kGiB - kMiB}, 7), MbrPartition({3 * kGiB, 2 * kGiB}, 7)};
    disk.partitions->back().kind = PartitionKind::kLogical;
    disk.extended = Range{2 * kGiB, 5 * kGiB};
    const std::vector<DiskPart> parts = Parts(disk);
    EXPECT_THAT(parts, ElementsAre(Part(PartKind::kPartition, {kMiB, 2 * kGiB - kMiB}, 1),
                                   Part(PartKind::kGap, {2 * kGiB, kGiB}),
                                   Part(PartKind::kPartition, {3 * kGiB, 2 * kGiB}, 2),
                                   Part(PartKind::kGap, {5 * kGiB, 2 * kGiB}),
                                   Part(PartKind::kGap, {7 * kGiB, 3 * kGiB})));
    std::vector<bool> in_extended;
    std::transform(parts.begin(), parts.end(), std::back_inserter(in_extended),
                   [](const DiskPart& part) { return part.in_extended; });
    EXPECT_THAT(in_extended, ElementsAre(false, true, true, true, false));
}

TEST_F(DiskParts, BrokenTable_HasEveryPartOnce) {
    Disk disk = MadeDisk(0, 10 * kGiB, Style::kMbr);
    disk.partitions = {MbrPartition({kMiB, 8 * kGiB}, 7), MbrPartition({4 * kGiB, 2 * kGiB}, 7),
                       MbrPartition({UINT64_MAX - 1, UINT64_MAX}, 7)};
    EXPECT_THAT(Parts(disk), ElementsAre(Part(PartKind::kPartition, {kMiB, 8 * kGiB}, 1),
                                         Part(PartKind::kPartition, {4 * kGiB, 2 * kGiB}, 2),
                                         Part(PartKind::kGap, {8 * kGiB + kMiB, 2 * kGiB - kMiB}),
                                         Part(PartKind::kPartition, {UINT64_MAX - 1, UINT64_MAX}, 3)));
}

}  // namespace

}  // namespace documents

#include "common/enumdisk/fixed_volumes.h"
#include "support/logger_capture.h"

#include <gmock/gmock.h>

namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;

::Volume VolumeAt(const wchar_t* name, std::uint32_t disk, std::uint64_t offset_mib, std::int32_t number) {
    ::Volume volume;
    volume.Name = name;
    volume.m_DiskNumber = disk;
    volume.m_offsetPartition = offset_mib * kMiB;
    volume.m_PartitionNumber = number;
    DiskExtent extent;
    extent.m_DiskNumber = disk;
    extent.m_offsetPartition = volume.m_offsetPartition;
    extent.m_PartitionNumber = number;
    volume.extents.push_back(extent);
    return volume;
}

TEST(AssignPartitionNumbers, ReversedNumbers_FollowTheOffsets) {
    const support::LoggerCapture log;
    std::vector<::Volume> volumes = {VolumeAt(L"a", 0, 500, 1), VolumeAt(L"b", 0, 1, 2)};
    assignPartitionNumbers(volumes);
    EXPECT_EQ(volumes[0].m_PartitionNumber, 2);
    EXPECT_EQ(volumes[0].extents[0].m_PartitionNumber, 2);
    EXPECT_EQ(volumes[1].m_PartitionNumber, 1);
    EXPECT_EQ(volumes[1].extents[0].m_PartitionNumber, 1);
    EXPECT_THAT(log.all(),
                testing::Contains(support::Trace(
                    "DTS 19154 possible? assignPartitionNumbers 1 changing partition number from 1 to 2 for "
                    "volume a")));
    EXPECT_THAT(log.all(),
                testing::Contains(support::Trace(
                    "DTS 19154 possible? assignPartitionNumbers 2 changing partition number from 2 to 1 for "
                    "volume b")));
}

TEST(AssignPartitionNumbers, SpannedVolume_TakesPartInTheNumberingOfItsSecondDisk) {
    ::Volume spanned = VolumeAt(L"span", 0, 1, 9);
    DiskExtent second;
    second.m_DiskNumber = 1;
    second.m_offsetPartition = 1 * kMiB;
    spanned.extents.push_back(second);
    std::vector<::Volume> volumes = {spanned, VolumeAt(L"b", 1, 500, 9)};
    assignPartitionNumbers(volumes);
    EXPECT_EQ(volumes[0].m_PartitionNumber, 1);
    EXPECT_EQ(volumes[0].extents[1].m_PartitionNumber, 1);
    EXPECT_EQ(volumes[1].m_PartitionNumber, 2);
}

TEST(AssignPartitionNumbers, RepeatedOffsets_TakeTheLastPosition) {
    std::vector<::Volume> volumes = {VolumeAt(L"a", 0, 1, 0), VolumeAt(L"b", 0, 1, 0),
                                     VolumeAt(L"c", 0, 2, 0)};
    assignPartitionNumbers(volumes);
    EXPECT_EQ(volumes[0].m_PartitionNumber, 2);
    EXPECT_EQ(volumes[1].m_PartitionNumber, 2);
    EXPECT_EQ(volumes[2].m_PartitionNumber, 3);
}

}  // namespace

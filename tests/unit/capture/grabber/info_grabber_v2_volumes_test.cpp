// The collection of format 2 on unusual volumes.

#include "unit/capture/grabber/workstation_v2.h"

#include <gmock/gmock.h>

namespace {

using support::Warning;
using testing::Contains;
using testing::ElementsAre;
using InfoGrabberV2Volumes = InfoGrabberV2Test;

TEST_F(InfoGrabberV2Volumes, LengthThatIsKnown_IsTheVolumesOwn) {
    DataVolume().length = MiB(1000);
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    const ::Volume& volume = VolumeOn(record(), L"\\Device\\HarddiskVolume6");
    EXPECT_EQ(volume.m_Size, MiB(1000));
    EXPECT_EQ(volume.extents.at(0).m_Size, MiB(953852));
}

TEST_F(InfoGrabberV2Volumes, SecondExtentOnAMissingDisk_FailsTheCollection) {
    DataVolume().extents->push_back({4, MiB(1), MiB(1)});
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError),
                Contains("orvane::InfoGrabberV2::AddVolumeInfo Can't find disk 4"));
}

TEST_F(InfoGrabberV2Volumes, ExtentBehindAllPartitionsAndGaps_FailsTheCollection) {
    DataVolume().extents->front().offset = 1000204886016;
    DataVolume().extents->front().length = 512;
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.all(),
                Contains(Warning("orvane::InfoGrabberV2::SetPartitionVolumeLetterFileSystem Failed to find "
                                 "extent (1000204886016 to 1000204886527) from volume "
                                 "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\")));
}

TEST_F(InfoGrabberV2Volumes, ExtentInsideAPartitionButNotAtItsStart_HasNoNumber) {
    DataVolume().extents->front() = {1, MiB(20), MiB(100)};
    DataVolume().length = MiB(99);
    EXPECT_FALSE(grabber_.ObtainInformation());
    EXPECT_THAT(log_.Lines(support::kHostError),
                ElementsAre("orvane::InfoGrabberV2::SetBasicVolumePartitionNumber failed to set volume "
                            "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\ "
                            "\\Device\\HarddiskVolume6 on disk 1 extent (from 20971520 length 103809024) "
                            "partition number"));
}

TEST_F(InfoGrabberV2Volumes, SpannedVolume_IsDynamicAndTouchesNoPartition) {
    // The first extent does not start where a partition starts. For a basic volume this would be an error.
    DataVolume().extents = {{1, MiB(20), MiB(100)}, {0, MiB(200), MiB(50)}};
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    const ::Volume& volume = VolumeOn(record(), L"\\Device\\HarddiskVolume6");
    EXPECT_TRUE(volume.Dynamic);
    EXPECT_EQ(volume.extents.size(), 2U);
    EXPECT_EQ(volume.m_DiskNumber, 1U);
    EXPECT_EQ(volume.m_offsetPartition, MiB(20));
    ASSERT_FALSE(record().DiskDrives.at(1).partitions.empty());
    for (const PartitionRow& row : record().DiskDrives.at(1).partitions) {
        EXPECT_EQ(row.drive, L"");
    }
}

TEST_F(InfoGrabberV2Volumes, NumberOfABasicVolume_IsTheRowsAndItsExtentKeepsTheSystems) {
    description().disks.at(1).partitions.at(1).number = 7;  // this is the second partition in disk order
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    const ::Volume& volume = VolumeOn(record(), L"\\Device\\HarddiskVolume6");
    EXPECT_FALSE(volume.Dynamic);
    EXPECT_EQ(volume.m_PartitionNumber, 2);
    EXPECT_EQ(volume.extents.at(0).m_PartitionNumber, 7);
}

TEST_F(InfoGrabberV2Volumes, NumbersOfADynamicVolume_AreTheSystems) {
    description().disks.at(0).partitions.at(2).number = 9;
    description().disks.at(1).partitions.at(1).number = 7;
    DataVolume().extents = {{1, MiB(16), MiB(100)}, {0, MiB(117), MiB(50)}};
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    const ::Volume& volume = VolumeOn(record(), L"\\Device\\HarddiskVolume6");
    EXPECT_TRUE(volume.Dynamic);
    EXPECT_EQ(volume.m_PartitionNumber, 7);
    EXPECT_EQ(volume.extents.at(0).m_PartitionNumber, 7);
    EXPECT_EQ(volume.extents.at(1).m_PartitionNumber, 9);
}

TEST_F(InfoGrabberV2Volumes, LengthThatCannotBeRead_IsTheFirstExtents) {
    DataVolume().length = MiB(1);
    DataVolume().errors.codes["DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO"] = 1;
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    EXPECT_EQ(VolumeOn(record(), L"\\Device\\HarddiskVolume6").m_Size, MiB(953852));
}

TEST_F(InfoGrabberV2Volumes, SeveralMountPoints_GiveTheSmallestDriveRoot) {
    DataVolume().mount_points = {L"C:\\Data\\", L"G:\\", L"D:\\"};
    ASSERT_TRUE(grabber_.ObtainInformation()) << log_;
    EXPECT_EQ(VolumeOn(record(), L"\\Device\\HarddiskVolume6").VolumeLetter, L"D:\\");
}

}  // namespace

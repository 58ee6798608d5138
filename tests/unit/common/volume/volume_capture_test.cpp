#include "common/volume/volume.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using described::kDataDevice;
using described::kDataId;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;
using testing::StartsWith;

constexpr const char* kLengthCall = "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO";
constexpr const char* kExtentsCall = "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS";

class VolumeCaptureTest : public testing::Test {
protected:
    void Initialize(Volume& volume) {
        volume.Initialize(L"", L"\\Device\\HarddiskVolume2", machine_.disks());
    }

    static std::vector<std::string> ElementsOf(const Volume& volume) {
        return captured::Elements([&](CMSXmlNode& node) { volume.CaptureInfo(node); });
    }

    std::vector<std::string> ElementsOfDataVolume() {
        Volume volume(kDataId, kDataDevice);
        Initialize(volume);
        return ElementsOf(volume);
    }

    support::LoggerCapture log_;
    described::Machine machine_;
};

TEST_F(VolumeCaptureTest, EveryQuerySucceeded_WritesAllInOrder) {
    Volume volume(kDataId, kDataDevice);
    Initialize(volume);
    volume.set_vorn_used_spaces(77);

    EXPECT_THAT(
        ElementsOf(volume),
        ElementsAre("VolumeId=\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
                    "VolumeGUID=\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
                    "DeviceName=\\Device\\HarddiskVolume2", "SerialNumber=439041101",
                    "VolumeLabel=Data & <more>", "MaxComponentLength=255", "FileSystem=NTFS",
                    "FileSystemFlags=65482495", "VolumePartitionSize=4294967296", "NumberOfMountPoints=2",
                    "MountPoint1=D:\\", "MountPoint2=C:\\Data\\Archive\\", "SectorsPerCluster=8",
                    "BytesPerSector=512", "VolumeBlockSize=4096", "FreeUserSpaces=1073741824",
                    "TotalUserSpaces=4294963200", "TotalFreeSpaces=1610612736", "VornUsedSpaces=77",
                    "SystemVolume=False", "BootVolume=True", "DynamicVolume=False", "ActivePartition=False",
                    "NumberOfDiskExtents=1", "Extent1", "Extent1/DiskNumber=0",
                    "Extent1/DiskOffset=525336576", "Extent1/ExtentLength=4294967296"));
}

TEST_F(VolumeCaptureTest, QueryFailed_LeavesItsElementsOut) {
    struct FailureCase {
        const char* call;
        std::vector<std::string> elements;
    };
    const FailureCase cases[] = {
        {"GetVolumeInformationW",
         {"SerialNumber", "VolumeLabel", "MaxComponentLength", "FileSystem", "FileSystemFlags"}},
        {kLengthCall, {"VolumePartitionSize"}},
        {"GetVolumePathNamesForVolumeNameW", {"NumberOfMountPoints", "MountPoint1", "MountPoint2"}},
        {"GetDiskFreeSpaceW", {"SectorsPerCluster", "BytesPerSector", "VolumeBlockSize"}},
        {"GetDiskFreeSpaceExW", {"FreeUserSpaces", "TotalUserSpaces", "TotalFreeSpaces"}},
    };
    const std::vector<std::string> all = ElementsOfDataVolume();
    for (const FailureCase& failure : cases) {
        machine_.simulation().faults().Clear();
        machine_.simulation().faults().Fail(failure.call, ERROR_NOT_READY);
        std::vector<std::string> expected = all;
        std::erase_if(expected, [&](const std::string& element) {
            return std::find(failure.elements.begin(), failure.elements.end(),
                             element.substr(0, element.find('='))) != failure.elements.end();
        });
        EXPECT_EQ(all.size() - failure.elements.size(), expected.size()) << failure.call;
        EXPECT_THAT(ElementsOfDataVolume(), ElementsAreArray(expected)) << failure.call;
    }
}

TEST_F(VolumeCaptureTest, ExtentsNotObtained_WritesNoneOfThem) {
    machine_.simulation().faults().Fail(kExtentsCall, ERROR_NOT_READY);

    const std::vector<std::string> elements = ElementsOfDataVolume();

    EXPECT_THAT(elements, Not(Contains(StartsWith("NumberOfDiskExtents"))));
    EXPECT_THAT(elements, Not(Contains(StartsWith("Extent1"))));
    EXPECT_THAT(elements, Contains("SystemVolume=False"));
}

TEST_F(VolumeCaptureTest, EmptyIdentity_IsLeftOut) {
    const std::vector<std::string> elements = ElementsOf(Volume(L""));

    EXPECT_THAT(elements, ElementsAre("SystemVolume=False", "BootVolume=False"));
}

TEST_F(VolumeCaptureTest, SeveralExtents_AreNumberedFromOne) {
    machine_.volume(1).extents = std::vector<machine::Extent>{{0, 1, 2}, {9, 3, 4}};

    const std::vector<std::string> elements = ElementsOfDataVolume();

    const auto first = std::find(elements.begin(), elements.end(), "NumberOfDiskExtents=2");
    EXPECT_THAT(std::vector<std::string>(first, elements.end()),
                ElementsAre("NumberOfDiskExtents=2", "Extent1", "Extent1/DiskNumber=0",
                            "Extent1/DiskOffset=1", "Extent1/ExtentLength=2", "Extent2",
                            "Extent2/DiskNumber=9", "Extent2/DiskOffset=3", "Extent2/ExtentLength=4"));
}

}  // namespace
}  // namespace bmr_common

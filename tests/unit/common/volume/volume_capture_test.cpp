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
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr const char* kLengthCall = "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO";

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

TEST_F(VolumeCaptureTest, EmptyIdentity_IsLeftOut) {
    const std::vector<std::string> elements = ElementsOf(Volume(L""));

    EXPECT_THAT(elements, ElementsAre("SystemVolume=False", "BootVolume=False"));
}

}  // namespace
}  // namespace bmr_common

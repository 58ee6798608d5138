#include "common/volume/volume.h"
#include "support/logger_capture.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using described::kDataDevice;
using described::kDataId;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr const char* kLengthCall = "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO";
constexpr const char* kExtentsCall = "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS";

class VolumeDumpTest : public testing::Test {
protected:
    void Initialize(Volume& volume) {
        volume.Initialize(L"", L"\\Device\\HarddiskVolume2", machine_.disks());
    }

    // The dumped lines. All messages must be at the dump's level.
    std::vector<std::string> DumpOf(const Volume& volume) {
        log_.Clear();
        volume.DumpInfo();
        EXPECT_EQ(log_.Messages().size(), log_.Count(support::kHostInformation)) << log_;
        return log_.Lines(support::kHostInformation);
    }

    std::vector<std::string> DumpOfDataVolume() {
        Volume volume(kDataId, kDataDevice);
        Initialize(volume);
        return DumpOf(volume);
    }

    support::LoggerCapture log_;
    described::Machine machine_;
};

TEST_F(VolumeDumpTest, QueryFailed_SaysSoInThePlaceOfItsLines) {
    struct FailureCase {
        const char* call;
        const char* first;  // first of the lines that are replaced
        const char* next;   // the line after them
        const char* line;
    };
    const FailureCase cases[] = {
        {"GetVolumePathNamesForVolumeNameW", "Drive letter/Mount points: ", "Serial number: 0x1a2b3c4d",
         "Error: failed to obtain mount points information"},
        {"GetVolumeInformationW", "Serial number: 0x1a2b3c4d", "Volume partition size: 4294967296(4.00 GB)",
         "Error: failed to obtain volume information"},
        {kLengthCall, "Volume partition size: 4294967296(4.00 GB)", "Sectors per cluster: 8",
         "Error: failed to obtain disk length information"},
        {"GetDiskFreeSpaceW", "Sectors per cluster: 8", "Free user spaces: 1073741824(1.00 GB)",
         "Error: failed to obtain block sizes"},
        {"GetDiskFreeSpaceExW", "Free user spaces: 1073741824(1.00 GB)",
         "Error: failed to obtain the application's used spaces information",
         "Error: failed to obtain user spaces information"},
        {kExtentsCall, "Dynamic volume: False", "", "Error: failed to obtain disk extents information"},
    };
    const std::vector<std::string> all = DumpOfDataVolume();
    for (const FailureCase& failure : cases) {
        machine_.simulation().faults().Clear();
        machine_.simulation().faults().Fail(failure.call, ERROR_NOT_READY);
        std::vector<std::string> lines = all;
        const auto first = std::find(lines.begin(), lines.end(), failure.first);
        const auto place = lines.erase(first, std::find(first, lines.end(), failure.next));
        lines.insert(place, failure.line);

        std::vector<std::string> dumped = DumpOfDataVolume();

        // The reasons and the verdict that follow from the failure are tested elsewhere.
        std::erase_if(dumped, [](const std::string& line) { return line.starts_with("  Failure reason: "); });
        EXPECT_EQ(lines.size(), dumped.size()) << failure.call;
        std::erase_if(dumped, [](const std::string& line) { return line.starts_with("Volume available"); });
        std::erase_if(lines, [](const std::string& line) { return line.starts_with("Volume available"); });
        EXPECT_THAT(dumped, ElementsAreArray(lines)) << failure.call;
    }
}

TEST_F(VolumeDumpTest, EachDriveType_HasItsLine) {
    const std::pair<UINT, const char*> types[] = {
        {1, "Drive type: invalid - no root directory"},
        {2, "Drive type: removable"},
        {3, "Drive type: fixed drive"},
        {4, "Drive type: remote"},
        {5, "Drive type: CD ROM"},
        {6, "Drive type: ramdisk"},
        {7, "Drive type: 7"},
        {0xFFFFFFFF, "Drive type: 4294967295"},
    };
    for (const auto& [type, line] : types) {
        machine_.volume(1).drive_type = type;
        EXPECT_THAT(DumpOfDataVolume(), Contains(line));
    }
}

TEST_F(VolumeDumpTest, DriveTypeNotObtained_SaysSo) {
    machine_.simulation().faults().Fail("GetDriveTypeW", ERROR_NOT_READY);

    EXPECT_THAT(DumpOfDataVolume(), Contains("Drive type: error - failed to obtain"));
}

TEST_F(VolumeDumpTest, NotInitialised_ClaimsNothing) {
    EXPECT_THAT(
        DumpOf(Volume(kDataId)),
        ElementsAre(
            "Volume ID: \\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
            "Volume GUID: \\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\",
            "Device name: ", "Volume available for backup: False", "Drive type: error - failed to obtain",
            "Error: failed to obtain mount points information", "Error: failed to obtain volume information",
            "Error: failed to obtain disk length information", "Error: failed to obtain block sizes",
            "Error: failed to obtain user spaces information",
            "Error: failed to obtain the application's used spaces information", "System volume: False",
            "Boot volume: False", "Error: failed to obtain disk extents information", ""));
}

TEST_F(VolumeDumpTest, SizesOf64Bits_ArePrintedWhole) {
    machine_.volume(1).length = 0x7FFFFFFFFFFFFFFF;
    machine_.volume(1).total_bytes = 1ULL << 50;

    const std::vector<std::string> lines = DumpOfDataVolume();

    EXPECT_THAT(lines, Contains("Volume partition size: 9223372036854775807(8589934592.00 GB)"));
    EXPECT_THAT(lines, Contains("Total user spaces: 1125899906842624(1048576.00 GB)"));
}

TEST_F(VolumeDumpTest, BlockSizeBelowAKilobyte_ShowsZeroKilobytes) {
    machine_.volume(1).sectors_per_cluster = 1;

    EXPECT_THAT(DumpOfDataVolume(), Contains("Volume block size: 0 KB (512 bytes)"));
}

TEST_F(VolumeDumpTest, UsedSpaceKnown_IsPrinted) {
    Volume volume(kDataId, kDataDevice);
    Initialize(volume);
    volume.set_vorn_used_spaces(536870912);

    const std::vector<std::string> lines = DumpOf(volume);

    EXPECT_EQ("The application's used spaces: 536870912(0.50 GB)", lines[20]);
}

}  // namespace
}  // namespace bmr_common

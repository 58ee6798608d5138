#include "common/volume/volume.h"
#include "support/logger_capture.h"
#include "unit/common/volume/described_volumes.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using described::kDataDevice;
using described::kDataId;
using testing::IsEmpty;

constexpr const char* kExtentsCall = "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS";

class VolumeExtentsTest : public testing::Test {
protected:
    // Gives the volume this many extents of 1 MiB on disk 0.
    void Scatter(std::uint64_t count) {
        std::vector<machine::Extent> extents;
        for (std::uint64_t i = 0; i < count; ++i) {
            extents.push_back({0, i << 21, 1U << 20});
        }
        machine_.volume(1).extents = extents;
    }

    support::LoggerCapture log_;
    described::Machine machine_;
    Volume volume_{kDataId, kDataDevice};
};

TEST_F(VolumeExtentsTest, NoExtents_IsASuccess) {
    Scatter(0);

    EXPECT_TRUE(volume_.Initialize(L"", L"", machine_.disks()));

    EXPECT_TRUE(volume_.IsSucceeded(L"Getting disk extents"));
    EXPECT_THAT(volume_.extents(), IsEmpty());
}

TEST_F(VolumeExtentsTest, AsManyAsTheFirstBufferHolds_AreReadAtOnce) {
    // 21 fit into 512 bytes, with which every growing buffer begins; a thousand into this one.
    for (const std::uint64_t count : {21U, 22U, 1000U}) {
        machine_.simulation().calls().Clear();
        Scatter(count);
        machine_.volume(1).extents_short_error = ERROR_MORE_DATA;
        Volume volume(kDataId, kDataDevice);

        EXPECT_TRUE(volume.Initialize(L"", L"", machine_.disks()));

        ASSERT_EQ(count, volume.extents().size());
        EXPECT_EQ((count - 1) << 21, static_cast<std::uint64_t>(volume.extents().back().starting_offset));
        EXPECT_EQ(1U, machine_.simulation().calls().Count(kExtentsCall));
    }
}

TEST_F(VolumeExtentsTest, MoreThanTheBufferHolds_BufferTooSmall_DoublesIt) {
    Scatter(3000);
    machine_.volume(1).extents_short_error = ERROR_INSUFFICIENT_BUFFER;

    EXPECT_TRUE(volume_.Initialize(L"", L"", machine_.disks()));

    EXPECT_EQ(3000U, volume_.extents().size());
    EXPECT_EQ(3U, machine_.simulation().calls().Count(kExtentsCall)) << "24,008, 48,016 and 96,032 bytes";
}

TEST_F(VolumeExtentsTest, MoreThanTheBufferHolds_AnyOtherError_IsRecorded) {
    Scatter(1001);
    machine_.volume(1).extents_short_error = ERROR_MORE_DATA;

    EXPECT_FALSE(volume_.Initialize(L"", L"", machine_.disks()));

    EXPECT_TRUE(volume_.IsFailed(L"Getting disk extents"));
    EXPECT_THAT(volume_.extents(), IsEmpty());
}

TEST_F(VolumeExtentsTest, NegativeLength_IsARecordedError) {
    machine_.volume(1).length = 0xFFFFFFFFFFFFFFFF;

    EXPECT_FALSE(volume_.Initialize(L"", L"", machine_.disks()));

    EXPECT_TRUE(volume_.IsFailed(L"Getting volume partition size"));
}

// A volume that throws from one of the queries that use its handle.
class ThrowingVolume : public Volume {
public:
    ThrowingVolume(bool size_throws, bool extents_throw)
        : Volume(kDataId, kDataDevice), size_throws_(size_throws), extents_throw_(extents_throw) {}

protected:
    void InitializeVolumePartitionSize(const UniqueFile& volume) override {
        if (size_throws_) {
            throw std::runtime_error("size");
        }
        Volume::InitializeVolumePartitionSize(volume);
    }
    void InitializeDiskExtents(const UniqueFile& volume) override {
        if (extents_throw_) {
            throw std::runtime_error("extents");
        }
        Volume::InitializeDiskExtents(volume);
    }

private:
    bool size_throws_;
    bool extents_throw_;
};

TEST_F(VolumeExtentsTest, ExceptionInEitherQuery_IsLoggedAndTheVolumeClosed) {
    const std::pair<bool, bool> cases[] = {{true, false}, {false, true}};
    for (const auto& [size_throws, extents_throw] : cases) {
        log_.Clear();
        ThrowingVolume volume(size_throws, extents_throw);

        EXPECT_NO_THROW(volume.Initialize(L"", L"", machine_.disks()));

        ASSERT_EQ(1U, log_.Count(support::kHostError)) << log_;
        EXPECT_THAT(log_.Lines(support::kHostError).front(),
                    testing::StartsWith("Exception in bmr_common::Volume::Initialize line "));
        EXPECT_EQ(0U, machine_.simulation().open_handles());
        EXPECT_FALSE(volume.IsSucceeded(L"Getting disk extents"));
        EXPECT_EQ(!size_throws, volume.IsSucceeded(L"Getting volume partition size"));
        EXPECT_FALSE(volume.found_fit_for_backup()) << "where it lies is not known";
        std::vector<std::wstring> reasons = {L"Failed to GetVolumeDiskExtents"};
        if (size_throws) {
            reasons.emplace_back(L"Failed to get volume partition size");
        }
        EXPECT_EQ(reasons, volume.backup_failure_reasons());
    }
}

}  // namespace
}  // namespace bmr_common

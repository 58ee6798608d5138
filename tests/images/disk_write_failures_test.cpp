// Makes single steps of a write to a disk image fail, and compares the image's contents byte for byte.

#include "common/disk/disk_drive_manager.h"
#include "common/disk/partition_manager_gpt.h"
#include "images/written_table.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using namespace written;
using bmr_common::DiskDriveManager;
using bmr_common::PartitionManagerGPT;

constexpr const char* kSource = "edit-gpt";
constexpr const char* kCopy = "failing";
constexpr const char* kDiskId = "DDDDDDDD-0000-4000-8000-000000000002";

constexpr const char* kSetLayout = "DeviceIoControl:IOCTL_DISK_SET_DRIVE_LAYOUT_EX";
constexpr const char* kCreate = "DeviceIoControl:IOCTL_DISK_CREATE_DISK";
constexpr const char* kUpdate = "DeviceIoControl:IOCTL_DISK_UPDATE_PROPERTIES";

std::string BytesOf(const std::string& name) {
    std::ifstream file(ImagePath(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A copy of the source image that is written in place. Deleted with the object.
class CopiedImage {
public:
    CopiedImage() {
        std::filesystem::copy_file(ImagePath(kSource), ImagePath(kCopy),
                                   std::filesystem::copy_options::overwrite_existing);
    }
    ~CopiedImage() { std::filesystem::remove(ImagePath(kCopy)); }
    CopiedImage(const CopiedImage&) = delete;
    CopiedImage& operator=(const CopiedImage&) = delete;

    // A machine with the copy as disk 0. `more` is the JSON of further keys of the disk, each preceded by a
    // comma.
    static machine::Description Described(const std::string& more = {}) {
        return machine::ParseDescription(
            R"({"disks": [{"index": 0, "image": "failing.img", "writable": true)" + more + "}]}",
            "failing.test", ORVANE_IMAGES_DIR);
    }
    static std::string bytes() { return BytesOf(kCopy); }
};

bool Delete(PartitionManagerGPT& manager) {
    return manager.DeletePartitionsAndWrite({8 * kMiB});
}

bool Create() {
    CREATE_DISK description{};
    description.PartitionStyle = PARTITION_STYLE_GPT;
    description.Gpt.DiskId = Guid(kDiskId);
    description.Gpt.MaxPartitionCount = 128;
    return DiskDriveManager::InitializeRAWDisk(0, description);
}

struct FailureCase {
    const char* name;
    const char* call;
    std::uint32_t error;
    bool succeeds;
    bool writes;
};

std::ostream& operator<<(std::ostream& out, const FailureCase& test_case) {
    return out << test_case.name;
}

std::string NameOf(const testing::TestParamInfo<FailureCase>& info) {
    return info.param.name;
}

// The image after a write without failures.
std::string BytesAfterDelete() {
    const CopiedImage image;
    {
        const machine::Simulation simulation(CopiedImage::Described());
        PartitionManagerGPT manager(0);
        Read(manager);
        EXPECT_TRUE(Delete(manager));
    }
    EXPECT_EQ(GptTable({kGptSystem, kGptReserved, kGptLongName}), ReadBack(kCopy));
    return image.bytes();
}

std::string BytesAfterCreate() {
    const CopiedImage image;
    {
        const machine::Simulation simulation(CopiedImage::Described());
        EXPECT_TRUE(Create());
    }
    EXPECT_EQ((Table{"gpt", kDiskId, {}}), ReadBack(kCopy));
    return image.bytes();
}

class LayoutFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(LayoutFailure, DeletePartitionsAndWrite_OneStepFails_LeavesWhatTheStepsBeforeLeft) {
    const FailureCase& test_case = GetParam();
    const std::string expected = test_case.writes ? BytesAfterDelete() : BytesOf(kSource);
    const CopiedImage image;
    machine::Simulation simulation(CopiedImage::Described());
    PartitionManagerGPT manager(0);
    Read(manager);
    simulation.faults().Fail(test_case.call, test_case.error);

    EXPECT_EQ(test_case.succeeds, Delete(manager));

    EXPECT_EQ(1U, simulation.faults().hits());
    EXPECT_EQ(0U, simulation.open_handles());
    EXPECT_EQ(0U, simulation.stale_handle_uses());
    EXPECT_TRUE(expected == image.bytes());
    // The manager keeps the edited table, whatever the disk contains.
    EXPECT_EQ(3U, manager.partitions().size());
    EXPECT_EQ(nullptr, manager.FindUsedPartition(8 * kMiB));
    ASSERT_NE(nullptr, manager.layout());
    EXPECT_EQ(3U, manager.layout()->PartitionCount);
}

INSTANTIATE_TEST_SUITE_P(Steps, LayoutFailure,
                         testing::Values(FailureCase{"Open", "CreateFileW", 5, false, false},
                                         FailureCase{"SetLayout", kSetLayout, 19, false, false},
                                         FailureCase{"Update", kUpdate, 21, false, true},
                                         FailureCase{"Flush", "FlushFileBuffers", 5, false, true},
                                         FailureCase{"FlushUnknown", "FlushFileBuffers", 1, true, true},
                                         FailureCase{"Close", "CloseHandle", 6, true, true}),
                         NameOf);

class CreationFailure : public testing::TestWithParam<FailureCase> {};

// Here the machine's description causes the failure.
TEST_P(CreationFailure, InitializeRAWDisk_OneStepFails_LeavesWhatTheStepsBeforeLeft) {
    const FailureCase& test_case = GetParam();
    const std::string expected = test_case.writes ? BytesAfterCreate() : BytesOf(kSource);
    const CopiedImage image;
    machine::Simulation simulation(CopiedImage::Described(std::string(R"(, "errors": {")") + test_case.call +
                                                          "\": " + std::to_string(test_case.error) + "}"));

    EXPECT_EQ(test_case.succeeds, Create());

    EXPECT_EQ(1U, simulation.described_errors_met());
    EXPECT_EQ(0U, simulation.open_handles());
    EXPECT_EQ(0U, simulation.stale_handle_uses());
    EXPECT_TRUE(expected == image.bytes());
}

INSTANTIATE_TEST_SUITE_P(Steps, CreationFailure,
                         testing::Values(FailureCase{"Open", "CreateFileW", 5, false, false},
                                         FailureCase{"CreateDisk", kCreate, 19, false, false},
                                         FailureCase{"Update", kUpdate, 21, false, true},
                                         FailureCase{"Flush", "FlushFileBuffers", 5, false, true},
                                         FailureCase{"FlushUnknown", "FlushFileBuffers", 1, true, true},
                                         FailureCase{"Close", "CloseHandle", 6, true, true}),
                         NameOf);

TEST(WriteFailures, Commit_OnePartitionMoreThanTheTableHolds_LeavesTheImage) {
    constexpr std::uint32_t kUnit = 16 * 1024;
    const std::string before = BytesOf(kSource);
    const CopiedImage image;
    machine::Simulation simulation(CopiedImage::Described());
    PartitionManagerGPT manager(0);
    Read(manager);
    for (int added = 4; added < 129; ++added) {
        std::int64_t start = 10 * kMiB + (added - 4) * std::int64_t{kUnit};
        std::int64_t size = 0;
        ASSERT_TRUE(manager.AddPartitionInMemory(start, kUnit, kUnit, kDiskSize, kUnit, Guid(kBasicData),
                                                 &start, &size));
    }

    EXPECT_FALSE(manager.CommitPartitionTable());

    EXPECT_EQ(129U, manager.partitions().size());
    EXPECT_EQ(0U, simulation.open_handles());
    EXPECT_TRUE(before == image.bytes());
    EXPECT_TRUE(Delete(manager)) << "with one less it fits";
    EXPECT_FALSE(before == image.bytes());
}

}  // namespace

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/listed_disks.h"
#include "unit/common/disk/simulated_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::Machine;
using support::Error;
using support::Info;
using testing::Contains;
using testing::ElementsAre;

// 500107862016 bytes, with a detection record.
constexpr const char* kSourceDisk = R"({"disks": [{"index": 1, "size": 500107862016, "signature": 439041101,
    "checksum": 305419896, "detection": {"type": "exint13", "exFlags": 7},
    "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": "ntfs"}]}]})";

// Reports every id as already in use.
template <class Kind>
class TakenDisk : public Kind {
public:
    using Kind::Kind;
    bool has_same_unique_id(const DiskDriveManager& /*other*/) const override { return true; }
};

class DiskFreshTableTest : public testing::Test {
protected:
    DiskFreshTableTest() {
        Machine machine(kSourceDisk);
        source_ = DiskDriveManagerFactory().CreateAndInitialize(1);
    }

    // The properties that every prepared disk copies from the source, and those that it must not copy.
    void ExpectTheSourcesShape(const DiskDriveManager& disk) const {
        const win::ByteBuffer& bytes = disk.geometry().bytes();
        ASSERT_EQ(120U, bytes.size());
        EXPECT_EQ(0, std::memcmp(source_->geometry().bytes().data(), bytes.data(), 32));
        EXPECT_EQ(500107862016, disk.geometry().disk_size());
        EXPECT_EQ(disk.GetPartitionStyle(), disk.geometry().partition_style());
        const std::uint32_t record_size = 24;
        EXPECT_EQ(0, std::memcmp(&record_size, bytes.data() + 32, sizeof(record_size)));
        EXPECT_EQ(win::ByteBuffer(64), win::ByteBuffer(bytes.begin() + 56, bytes.end()))
            << "no detection record";
        EXPECT_TRUE(disk.IsSucceeded(L"Opening Disk"));
        EXPECT_TRUE(disk.IsSucceeded(L"Getting Drive Geometry"));
    }

    listed::Disks disks_;
    DiskDriveManagerPtr source_;
    support::LoggerCapture log_;
};

TEST_F(DiskFreshTableTest, Gpt_TakesTheShapeAndAnEmptyTable) {
    DiskDriveManagerGPT disk(5);

    ASSERT_TRUE(disk.InitializeUsingGeometryOf(source_, disks_));

    ExpectTheSourcesShape(disk);
    EXPECT_FALSE(IsEqualGUID(GUID{}, disk.geometry().disk_id()));
    const DRIVE_LAYOUT_INFORMATION_EX* layout = disk.GetPartitionLayoutExPtr();
    ASSERT_NE(nullptr, layout);
    EXPECT_EQ(1U, layout->PartitionStyle);
    EXPECT_EQ(0U, layout->PartitionCount);
    EXPECT_TRUE(IsEqualGUID(disk.geometry().disk_id(), layout->Gpt.DiskId));
    EXPECT_EQ(0x100000, layout->Gpt.StartingUsableOffset.QuadPart);
    EXPECT_EQ(500107862016 - 34304, layout->Gpt.UsableLength.QuadPart);
    EXPECT_EQ(128U, layout->Gpt.MaxPartitionCount);
    EXPECT_EQ(0U, disk.GetPartitionCount());
}

TEST_F(DiskFreshTableTest, Mbr_TakesTheShapeAndFourUnusedEntries) {
    DiskDriveManagerMBR disk(5);

    ASSERT_TRUE(disk.InitializeUsingGeometryOf(source_, disks_));

    ExpectTheSourcesShape(disk);
    std::uint32_t checksum = 1;
    std::memcpy(&checksum, disk.geometry().bytes().data() + 44, sizeof(checksum));
    EXPECT_EQ(0U, checksum);
    const DRIVE_LAYOUT_INFORMATION_EX* layout = disk.GetPartitionLayoutExPtr();
    ASSERT_NE(nullptr, layout);
    EXPECT_EQ(0U, layout->PartitionStyle);
    EXPECT_EQ(4U, layout->PartitionCount);
    EXPECT_EQ(disk.geometry().signature(), layout->Mbr.Signature);
    EXPECT_EQ(4U, disk.GetPartitionCount());
    EXPECT_FALSE(disk.HasPartitionAtOffset(0));
}

TEST_F(DiskFreshTableTest, EitherKind_CannotBeBackedUpYet) {
    DiskDriveManagerMBR mbr(5);
    DiskDriveManagerGPT gpt(6);
    ASSERT_TRUE(mbr.InitializeUsingGeometryOf(source_, disks_));
    ASSERT_TRUE(gpt.InitializeUsingGeometryOf(source_, disks_));
    std::vector<std::wstring> reasons;

    EXPECT_FALSE(mbr.can_backup(reasons));
    EXPECT_FALSE(gpt.can_backup(reasons));
    EXPECT_THAT(reasons, ElementsAre(L" All partitions are marked as unused entry - cannot backup disk 5",
                                     L" All partitions are marked as unused entry - cannot backup disk 6"));
}

TEST_F(DiskFreshTableTest, Dump_GptAlone_SaysThatTheTypeWasNotVerified) {
    DiskDriveManagerMBR mbr(5);
    DiskDriveManagerGPT gpt(6);
    ASSERT_TRUE(mbr.InitializeUsingGeometryOf(source_, disks_));
    ASSERT_TRUE(gpt.InitializeUsingGeometryOf(source_, disks_));
    const std::string not_verified = "operation Verifying partition type has not attempted";

    log_.Clear();
    gpt.DumpInfo();
    EXPECT_EQ(1U, log_.Count(support::kHostInformation, not_verified)) << log_;

    log_.Clear();
    mbr.DumpInfo();
    EXPECT_THAT(log_.all(), Contains(Info("  Number of partitions: 4")));
    EXPECT_EQ(0U, log_.Count(support::kHostInformation, not_verified)) << log_;
}

TEST_F(DiskFreshTableTest, NoUniqueIdToBeHad_IsAFailureWithoutATable) {
    disks_.Put(boost::make_shared<DiskDriveManagerMBR>(1));
    disks_.Put(boost::make_shared<DiskDriveManagerGPT>(2));
    TakenDisk<DiskDriveManagerMBR> mbr(5);
    TakenDisk<DiskDriveManagerGPT> gpt(6);

    EXPECT_FALSE(mbr.InitializeUsingGeometryOf(source_, disks_));
    EXPECT_FALSE(gpt.InitializeUsingGeometryOf(source_, disks_));

    EXPECT_EQ(nullptr, mbr.GetPartitionLayoutExPtr());
    EXPECT_EQ(nullptr, gpt.GetPartitionLayoutExPtr());
    EXPECT_EQ(0U, mbr.GetPartitionCount());
}

TEST_F(DiskFreshTableTest, SourceWithoutGeometry_IsAFailureWithItsLine) {
    DiskDriveManagerMBR mbr(5);
    DiskDriveManagerGPT gpt(6);
    const DiskDriveManagerPtr never_read = boost::make_shared<DiskDriveManagerMBR>(1);

    for (const DiskDriveManagerPtr& source : {DiskDriveManagerPtr(), never_read}) {
        log_.Clear();
        EXPECT_FALSE(mbr.InitializeUsingGeometryOf(source, disks_));
        EXPECT_FALSE(gpt.InitializeUsingGeometryOf(source, disks_));
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Error("bmr_common::DiskDriveManager::InitializeUsingGeometryOf "
                                      "no geometry to take for disk 5"),
                                Error("bmr_common::DiskDriveManager::InitializeUsingGeometryOf "
                                      "no geometry to take for disk 6")));
    }
    EXPECT_FALSE(mbr.IsSucceeded(L"Getting Drive Geometry"));
    EXPECT_EQ(nullptr, gpt.GetPartitionLayoutExPtr());
}

}  // namespace
}  // namespace bmr_common

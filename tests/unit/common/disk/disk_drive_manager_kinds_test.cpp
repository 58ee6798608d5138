#include "common/disk/device_manager.h"
#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "unit/common/disk/expected_lines.h"
#include "unit/common/disk/simulated_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using expected::Error;
using simulated_disks::kGptDisk;
using simulated_disks::kMbrDisk;
using simulated_disks::kMiB;
using simulated_disks::Machine;
using testing::ElementsAre;
using testing::IsEmpty;

DiskDriveManagerPtr DiskOf(const char* json) {
    Machine machine(json);
    return DiskDriveManagerFactory().CreateAndInitialize(machine.disk().index);
}

class DiskDriveManagerKindsTest : public testing::Test {
protected:
    DiskDriveManagerPtr gpt_ = DiskOf(kGptDisk);
    DiskDriveManagerPtr mbr_ = DiskOf(kMbrDisk);
    DiskDriveManagerPtr raw_ = DiskOf(R"({"disks": [{"index": 5, "size": "1 GiB"}]})");
    support::LoggerCapture log_;
};

TEST_F(DiskDriveManagerKindsTest, GetPartitionStyle_IsTheKinds) {
    EXPECT_EQ(0U, mbr_->GetPartitionStyle());
    EXPECT_EQ(1U, gpt_->GetPartitionStyle());
    EXPECT_EQ(2U, raw_->GetPartitionStyle());
}

TEST_F(DiskDriveManagerKindsTest, Questions_OfATable_GoToIt) {
    EXPECT_EQ(3U, gpt_->GetPartitionCount());
    EXPECT_EQ(4U, mbr_->GetPartitionCount());
    EXPECT_FALSE(gpt_->is_dynamic());
    EXPECT_FALSE(mbr_->is_dynamic());
    EXPECT_TRUE(gpt_->ExtentIsOnBootablePartition(kMiB, 100 * kMiB));
    EXPECT_FALSE(gpt_->ExtentIsOnBootablePartition(117 * kMiB, kMiB));
    EXPECT_TRUE(mbr_->ExtentIsOnBootablePartition(kMiB, 500 * kMiB));
    EXPECT_FALSE(mbr_->ExtentIsOnBootablePartition(501 * kMiB, kMiB));
}

TEST_F(DiskDriveManagerKindsTest, IsDynamic_DynamicPartition_MakesTheDiskDynamic) {
    const DiskDriveManagerPtr mbr = DiskOf(R"({"disks": [{"index": 1, "size": "8 GiB", "signature": 7,
        "partitions": [{"offset": "1 MiB", "size": "1 GiB", "type": "ldm"}]}]})");
    const DiskDriveManagerPtr gpt = DiskOf(R"({"disks": [{"index": 1, "size": "8 GiB", "style": "gpt",
        "partitions": [{"offset": "1 MiB", "size": "1 MiB", "type": "ldm-metadata"},
                       {"offset": "2 MiB", "size": "1 GiB", "type": "ldm-data"}]}]})");

    EXPECT_TRUE(mbr->is_dynamic());
    EXPECT_TRUE(gpt->is_dynamic());
}

TEST_F(DiskDriveManagerKindsTest, HasPartitionAtOffset_UsedEntriesOnly) {
    EXPECT_TRUE(gpt_->HasPartitionAtOffset(101 * kMiB));
    EXPECT_FALSE(gpt_->HasPartitionAtOffset(101 * kMiB + 1));
    EXPECT_TRUE(mbr_->HasPartitionAtOffset(501 * kMiB));
    EXPECT_FALSE(mbr_->HasPartitionAtOffset(0)) << "the unused slots stand there";
    EXPECT_FALSE(raw_->HasPartitionAtOffset(0));
}

TEST_F(DiskDriveManagerKindsTest, GetPartitionNumberAtOffset_IsTheTables) {
    std::uint32_t number = 99;

    EXPECT_TRUE(gpt_->GetPartitionNumberAtOffset(117 * kMiB, number));
    EXPECT_EQ(3U, number);
    EXPECT_TRUE(mbr_->GetPartitionNumberAtOffset(501 * kMiB, number));
    EXPECT_EQ(2U, number);
    EXPECT_FALSE(mbr_->GetPartitionNumberAtOffset(7, number));
    EXPECT_FALSE(raw_->GetPartitionNumberAtOffset(0, number));
    EXPECT_EQ(2U, number);
}

TEST_F(DiskDriveManagerKindsTest, GetPartitionLayoutExPtr_ReadLayout_IsGiven) {
    ASSERT_NE(nullptr, gpt_->GetPartitionLayoutExPtr());
    EXPECT_EQ(3U, gpt_->GetPartitionLayoutExPtr()->PartitionCount);
    ASSERT_NE(nullptr, mbr_->GetPartitionLayoutExPtr());
    EXPECT_EQ(439041101U, mbr_->GetPartitionLayoutExPtr()->Mbr.Signature);
}

TEST_F(DiskDriveManagerKindsTest, GetPartitionLayoutExPtr_LayoutNotRead_IsNull) {
    EXPECT_EQ(nullptr, DiskDriveManagerGPT(1).GetPartitionLayoutExPtr());
    EXPECT_EQ(nullptr, DiskDriveManagerMBR(1).GetPartitionLayoutExPtr());
}

TEST_F(DiskDriveManagerKindsTest, SetupDiskStruct_Gpt_FillsIdAndCount) {
    CREATE_DISK description{};

    EXPECT_TRUE(gpt_->SetupDiskStruct(description));

    EXPECT_EQ(PARTITION_STYLE_GPT, description.PartitionStyle);
    EXPECT_TRUE(IsEqualGUID(gpt_->geometry().disk_id(), description.Gpt.DiskId));
    EXPECT_FALSE(IsEqualGUID(GUID{}, description.Gpt.DiskId));
    EXPECT_EQ(128U, description.Gpt.MaxPartitionCount);
}

TEST_F(DiskDriveManagerKindsTest, SetupDiskStruct_Mbr_FillsTheSignature) {
    CREATE_DISK description{};
    description.PartitionStyle = PARTITION_STYLE_RAW;

    EXPECT_TRUE(mbr_->SetupDiskStruct(description));

    EXPECT_EQ(PARTITION_STYLE_MBR, description.PartitionStyle);
    EXPECT_EQ(439041101U, description.Mbr.Signature);
}

TEST_F(DiskDriveManagerKindsTest, CanBackup_DiskStatusWithErrors_GivesThoseAlone) {
    std::vector<std::wstring> reasons;
    DiskDriveManagerGPT gpt(1);
    gpt.status().SetError(kOpeningDisk, L"gpt");
    DiskDriveManagerMBR mbr(1);
    mbr.status().SetError(kGettingDriveGeometry, L"mbr");
    DiskDriveManagerUnknown unknown(1);
    unknown.status().SetError(kGettingDriveGeometry, L"unknown");

    EXPECT_FALSE(gpt.can_backup(reasons));
    EXPECT_FALSE(mbr.can_backup(reasons));
    EXPECT_FALSE(unknown.can_backup(reasons));
    EXPECT_THAT(reasons, ElementsAre(L"gpt", L"mbr", L"unknown"));
}

TEST_F(DiskDriveManagerKindsTest, CanBackup_Raw_RefusesSilently) {
    std::vector<std::wstring> reasons = {L"other"};

    EXPECT_FALSE(raw_->can_backup(reasons));
    EXPECT_THAT(reasons, ElementsAre(L"other", L"Unknown disk partition style 2"));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(DiskDriveManagerKindsTest, CanBackup_EveryPartitionUnused_IsTheTablesRefusal) {
    const DiskDriveManagerPtr disk = DiskOf(R"({"disks": [{"index": 10, "size": "8 GiB", "signature": 7}]})");
    std::vector<std::wstring> reasons;

    EXPECT_FALSE(disk->can_backup(reasons));
    EXPECT_THAT(reasons, ElementsAre(L" All partitions are marked as unused entry - cannot backup disk 10"));
}

TEST_F(DiskDriveManagerKindsTest, HasSameUniqueId_SameStyleAndId_Agrees) {
    EXPECT_TRUE(gpt_->has_same_unique_id(*DiskOf(kGptDisk)));
    EXPECT_TRUE(mbr_->has_same_unique_id(*DiskOf(kMbrDisk)));
    EXPECT_FALSE(gpt_->has_same_unique_id(*mbr_));
    EXPECT_FALSE(mbr_->has_same_unique_id(*gpt_));
    EXPECT_FALSE(mbr_->has_same_unique_id(*raw_));
}

TEST_F(DiskDriveManagerKindsTest, HasSameUniqueId_OtherId_Disagrees) {
    const DiskDriveManagerPtr gpt = DiskOf(R"({"disks": [{"index": 3, "size": "8 GiB",
        "diskId": "{11111111-2222-3333-4444-555555555556}"}]})");
    const DiskDriveManagerPtr mbr =
        DiskOf(R"({"disks": [{"index": 3, "size": "8 GiB", "signature": 439041100}]})");

    EXPECT_FALSE(gpt_->has_same_unique_id(*gpt));
    EXPECT_FALSE(mbr_->has_same_unique_id(*mbr));
}

TEST_F(DiskDriveManagerKindsTest, Unknown_HasNoPartitions) {
    EXPECT_EQ(0U, raw_->GetPartitionCount());
}

TEST_F(DiskDriveManagerKindsTest, Unknown_QuestionsOfATable_AreNotImplemented) {
    const DeviceManager none;
    CREATE_DISK description{};
    struct Question {
        const char* function;
        std::function<bool()> ask;
    };
    const Question questions[] = {
        {"is_dynamic", [&] { return raw_->is_dynamic(); }},
        {"ExtentIsOnBootablePartition", [&] { return raw_->ExtentIsOnBootablePartition(0, kMiB); }},
        {"SetupDiskStruct", [&] { return raw_->SetupDiskStruct(description); }},
        {"GetPartitionLayoutExPtr", [&] { return raw_->GetPartitionLayoutExPtr() != nullptr; }},
        {"InitializeUsingGeometryOf", [&] { return raw_->InitializeUsingGeometryOf(gpt_, none); }},
        {"SetUniqueIdToRandom",
         [&] {
             raw_->SetUniqueIdToRandom();
             return false;
         }},
        {"has_same_unique_id", [&] { return raw_->has_same_unique_id(*raw_); }},
    };
    for (const Question& question : questions) {
        log_.Clear();
        EXPECT_FALSE(question.ask()) << question.function;
        EXPECT_THAT(log_.all(),
                    ElementsAre(Error(std::string("bmr_common::DiskDriveManagerUnknown::") +
                                      question.function + " not implemented for this disk type.")));
    }
}

}  // namespace
}  // namespace bmr_common

#include "common/disk/device_manager.h"
#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "unit/common/disk/simulated_disks.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::kGptDisk;
using simulated_disks::kMbrDisk;
using simulated_disks::kMiB;
using simulated_disks::Machine;
using support::Error;
using testing::ElementsAre;

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

TEST_F(DiskDriveManagerKindsTest, GetPartitionLayoutExPtr_LayoutNotRead_IsNull) {
    EXPECT_EQ(nullptr, DiskDriveManagerGPT(1).GetPartitionLayoutExPtr());
    EXPECT_EQ(nullptr, DiskDriveManagerMBR(1).GetPartitionLayoutExPtr());
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

TEST_F(DiskDriveManagerKindsTest, HasSameUniqueId_OtherId_Disagrees) {
    const DiskDriveManagerPtr gpt = DiskOf(R"({"disks": [{"index": 3, "size": "8 GiB",
        "diskId": "{11111111-2222-3333-4444-555555555556}"}]})");
    const DiskDriveManagerPtr mbr =
        DiskOf(R"({"disks": [{"index": 3, "size": "8 GiB", "signature": 439041100}]})");

    EXPECT_FALSE(gpt_->has_same_unique_id(*gpt));
    EXPECT_FALSE(mbr_->has_same_unique_id(*mbr));
}

TEST_F(DiskDriveManagerKindsTest, Unknown_HasNoPartitions) {
    std::uint32_t number = 99;
    EXPECT_EQ(0U, raw_->GetPartitionCount());
    EXPECT_FALSE(raw_->HasPartitionAtOffset(0));
    EXPECT_FALSE(raw_->GetPartitionNumberAtOffset(0, number));
    EXPECT_EQ(99U, number);
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

#include "common/disk/partition_gpt.h"
#include "common/disk/partition_mbr.h"
#include "support/logger_capture.h"
#include "unit/common/disk/made_managers.h"
#include "unit/common/disk/partition_entries.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using made::GptManager;
using made::MbrManager;
using support::Error;
using support::Info;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMiB = 1LL << 20;

constexpr const char* kAllUnused = " All partitions are marked as unused entry - cannot backup disk 3";
const std::wstring kAllUnusedReason = L" All partitions are marked as unused entry - cannot backup disk 3";

// In use, but cannot be backed up. None of the library's partition classes behaves like this.
class RefusingPartition : public PartitionMBR {
public:
    bool can_backup(std::vector<std::wstring>& reasons) const override {
        reasons.emplace_back(L"refused at " + std::to_wstring(starting_offset()));
        return false;
    }
};

class PartitionManagerQuestionsTest : public testing::Test {
protected:
    std::vector<std::wstring> reasons_;
    support::LoggerCapture log_;
};

TEST_F(PartitionManagerQuestionsTest, CanBackup_Gpt_OneEntryInUse_AgreesWhateverItsType) {
    for (const GUID& type :
         {entries::kEfiSystem, entries::kReserved, entries::kForeign, entries::kBasicData}) {
        const GptManager manager{entries::Gpt(0, 0, entries::kUnused), entries::Gpt(kMiB, kMiB, type)};
        EXPECT_TRUE(manager.can_backup(reasons_));
    }
    EXPECT_THAT(reasons_, IsEmpty());
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(PartitionManagerQuestionsTest, CanBackup_Gpt_NoEntries_RefusesAndLogs) {
    const GptManager manager;
    reasons_ = {L"other"};

    EXPECT_FALSE(manager.can_backup(reasons_));
    EXPECT_THAT(reasons_, ElementsAre(L"other", kAllUnusedReason));
    EXPECT_THAT(log_.Messages(), ElementsAre(Info(kAllUnused)));
}

TEST_F(PartitionManagerQuestionsTest, CanBackup_Mbr_FourUnused_RefusesAndLogs) {
    const MbrManager manager{entries::Mbr(0, 0, 0), entries::Mbr(0, 0, 0), entries::Mbr(0, 0, 0),
                             entries::Mbr(0, 0, 0)};

    EXPECT_FALSE(manager.can_backup(reasons_));
    EXPECT_THAT(reasons_, ElementsAre(kAllUnusedReason));
    EXPECT_THAT(log_.Messages(), ElementsAre(Info(kAllUnused)));
}

TEST_F(PartitionManagerQuestionsTest, CanBackup_Mbr_OneEntryInUse_AgreesWhateverItsType) {
    for (const std::uint8_t type :
         {std::uint8_t{0x05}, std::uint8_t{0x42}, std::uint8_t{0x83}, std::uint8_t{0xEE}}) {
        const MbrManager manager{entries::Mbr(0, 0, 0), entries::Mbr(kMiB, kMiB, type)};
        EXPECT_TRUE(manager.can_backup(reasons_));
    }
    EXPECT_THAT(reasons_, IsEmpty());
}

TEST_F(PartitionManagerQuestionsTest, CanBackup_Mbr_EntryInUseRefuses_StopsThere) {
    MbrManager manager{entries::Mbr(0, 0, 0)};
    for (const std::int64_t start : {kMiB, 2 * kMiB}) {
        const auto partition = boost::make_shared<RefusingPartition>();
        partition->Initialize(entries::Mbr(start, kMiB));
        manager.list().push_back(partition);
    }

    EXPECT_FALSE(manager.can_backup(reasons_));
    EXPECT_THAT(reasons_, ElementsAre(L"refused at 1048576"));
}

TEST_F(PartitionManagerQuestionsTest, CanBackup_StatusWithErrors_GivesTheirTextsOnly) {
    GptManager gpt{entries::Gpt(0, 0, entries::kUnused)};
    gpt.status().SetError(kVerifyingPartitionType, L"second");
    gpt.status().SetError(kGettingDriveLayoutEx, L"first");
    MbrManager mbr{entries::Mbr(kMiB, kMiB)};
    mbr.status().SetError(kGettingDriveLayoutEx, L"third");

    EXPECT_FALSE(gpt.can_backup(reasons_));
    EXPECT_FALSE(mbr.can_backup(reasons_));
    EXPECT_THAT(reasons_, ElementsAre(L"first", L"second", L"third"));
}

TEST_F(PartitionManagerQuestionsTest, IsDynamic_AnyDynamicPartition_IsEnough) {
    EXPECT_FALSE(GptManager().is_dynamic());
    EXPECT_FALSE(
        (GptManager{entries::Gpt(kMiB, kMiB), entries::Gpt(0, 0, entries::kLdmMetadata)}.is_dynamic()));
    EXPECT_TRUE((GptManager{entries::Gpt(kMiB, kMiB), entries::Gpt(0, 0, entries::kLdmData)}.is_dynamic()));
    EXPECT_FALSE((MbrManager{entries::Mbr(kMiB, kMiB)}.is_dynamic()));
    EXPECT_TRUE((MbrManager{entries::Mbr(kMiB, kMiB), entries::Mbr(0, 0, entries::kLdm)}.is_dynamic()));
}

TEST_F(PartitionManagerQuestionsTest, ExtentIsOnBootablePartition_Gpt_IsTheEfiSystemPartition) {
    const GptManager manager{entries::Gpt(kMiB, kMiB, entries::kEfiSystem), entries::Gpt(2 * kMiB, kMiB)};

    EXPECT_TRUE(manager.ExtentIsOnBootablePartition(kMiB, kMiB));
    EXPECT_FALSE(manager.ExtentIsOnBootablePartition(2 * kMiB, kMiB));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(PartitionManagerQuestionsTest, ExtentIsOnBootablePartition_Mbr_IsTheActivePartition) {
    PARTITION_INFORMATION_EX active = entries::Mbr(kMiB, kMiB);
    active.Mbr.BootIndicator = TRUE;
    PARTITION_INFORMATION_EX odd = entries::Mbr(2 * kMiB, kMiB);
    odd.Mbr.BootIndicator = 2;
    const MbrManager manager{active, odd};

    EXPECT_TRUE(manager.ExtentIsOnBootablePartition(kMiB, kMiB));
    EXPECT_FALSE(manager.ExtentIsOnBootablePartition(2 * kMiB, kMiB));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(PartitionManagerQuestionsTest, ExtentIsOnBootablePartition_NoPartition_LogsOffsetAndLength) {
    EXPECT_FALSE(GptManager().ExtentIsOnBootablePartition(1000, 500));
    EXPECT_FALSE(MbrManager().ExtentIsOnBootablePartition(1000, 500));
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("bmr_common::PartitionManagerGPT::ExtentIsOnBootablePartition no partition that "
                          "contains extent (1000 to 500)."),
                    Error("bmr_common::PartitionManagerMBR::ExtentIsOnBootablePartition no partition that "
                          "contains extent (1000 to 500).")));
}

TEST_F(PartitionManagerQuestionsTest, ExtentIsOnBootablePartition_TwoPartitions_LogsOffsetAndLength) {
    const GptManager gpt{entries::Gpt(0, 5000, entries::kEfiSystem),
                         entries::Gpt(0, 6000, entries::kEfiSystem)};
    const MbrManager mbr{entries::Mbr(0, 5000), entries::Mbr(0, 6000)};

    EXPECT_FALSE(gpt.ExtentIsOnBootablePartition(1000, 500));
    EXPECT_FALSE(mbr.ExtentIsOnBootablePartition(1000, 500));
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("bmr_common::PartitionManagerGPT::ExtentIsOnBootablePartition multiple partitions "
                          "contains extent (1000 to 500)."),
                    Error("bmr_common::PartitionManagerMBR::ExtentIsOnBootablePartition multiple partitions "
                          "contains extent (1000 to 500).")));
}

TEST_F(PartitionManagerQuestionsTest, FindPartitionsContainingExtent_Matches_ReplaceTheListInOrder) {
    const GptManager manager{entries::Gpt(0, 9000), entries::Gpt(20000, 1000), entries::Gpt(500, 2000)};
    std::vector<PartitionPtr> found = {manager.partitions()[1]};

    manager.FindPartitionsContainingExtent(1000, 100, found);

    EXPECT_THAT(found, ElementsAre(manager.partitions()[0], manager.partitions()[2]));
}

TEST_F(PartitionManagerQuestionsTest, FindPartitionsContainingExtent_NoMatch_EmptiesTheList) {
    const GptManager manager{entries::Gpt(0, 1000)};
    std::vector<PartitionPtr> found = {manager.partitions()[0]};

    manager.FindPartitionsContainingExtent(5000, 100, found);

    EXPECT_THAT(found, IsEmpty());
}

TEST_F(PartitionManagerQuestionsTest, IsExtentOverlappingAnyPartition_AnyOverlap_IsEnough) {
    const GptManager manager{entries::Gpt(0, 1000), entries::Gpt(5000, 1000, entries::kUnused)};

    EXPECT_TRUE(manager.IsExtentOverlappingAnyPartition(999, 10));
    EXPECT_TRUE(manager.IsExtentOverlappingAnyPartition(5999, 10));
    EXPECT_FALSE(manager.IsExtentOverlappingAnyPartition(1000, 4000));
    EXPECT_FALSE(GptManager().IsExtentOverlappingAnyPartition(0, 1000));
}

TEST_F(PartitionManagerQuestionsTest, GetPartitionNumberAtOffset_UsedEntry_GivesTheSystemsNumber) {
    PARTITION_INFORMATION_EX unused = entries::Mbr(kMiB, kMiB, 0);
    unused.PartitionNumber = 7;
    PARTITION_INFORMATION_EX first = entries::Mbr(kMiB, kMiB);
    first.PartitionNumber = 4;
    PARTITION_INFORMATION_EX second = entries::Mbr(kMiB, kMiB);
    second.PartitionNumber = 5;
    const MbrManager manager{unused, first, second};
    std::uint32_t number = 99;

    EXPECT_TRUE(manager.GetPartitionNumberAtOffset(kMiB, number));
    EXPECT_EQ(4U, number);
}

TEST_F(PartitionManagerQuestionsTest, GetPartitionNumberAtOffset_NoUsedEntryThere_LeavesTheNumber) {
    const MbrManager manager{entries::Mbr(0, 0, 0), entries::Mbr(kMiB, kMiB)};
    std::uint32_t number = 99;

    EXPECT_FALSE(manager.GetPartitionNumberAtOffset(0, number));
    EXPECT_FALSE(manager.GetPartitionNumberAtOffset(kMiB + 1, number));
    EXPECT_EQ(99U, number);
}

}  // namespace
}  // namespace bmr_common

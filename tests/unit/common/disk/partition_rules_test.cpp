#include "common/disk/partition_gpt.h"
#include "common/disk/partition_mbr.h"
#include "support/logger_capture.h"
#include "support/text.h"
#include "unit/common/disk/partition_entries.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Info;
using testing::ElementsAre;
using testing::IsEmpty;

struct GptTypeCase {
    GUID type;
    const char* name;
    const char* text;  // of the type, in registry form
    bool may_be_backed_up;
    bool dynamic;
    bool unused;
    bool bootable;
};

constexpr GptTypeCase kGptTypes[] = {
    {entries::kBasicData, "Basic data partition", "{EBD0A0A2-B9E5-4433-87C0-68B6B72699C7}", true, false,
     false, false},
    {entries::kUnused, "Unused partition entry", "{00000000-0000-0000-0000-000000000000}", false, false, true,
     false},
    {entries::kEfiSystem, "System partition", "{C12A7328-F81F-11D2-BA4B-00A0C93EC93B}", false, false, false,
     true},
    {entries::kReserved, "Microsoft reserved partition", "{E3C9E316-0B5C-4DB8-817D-F92DF00215AE}", false,
     false, false, false},
    {entries::kLdmMetadata, "LDM metadata partition", "{5808C8AA-7E8F-42E0-85D2-E1E90434CFB3}", false, false,
     false, false},
    {entries::kLdmData, "LDM data partition", "{AF9B60A0-1431-4F62-BC68-3311714A69AD}", true, true, false,
     false},
    {entries::kRecovery, "MSFT recovery partition", "{DE94BBA4-06D1-4D40-A16A-BFD50179D6AC}", false, false,
     false, false},
    {entries::kForeign, "Unknown partition", "{0FC63DAF-8483-4772-8E79-3D69D8477DE4}", false, false, false,
     false},
};

class PartitionGptRulesTest : public testing::Test {
protected:
    void Take(const GUID& type) { partition_.Initialize(entries::Gpt(0x100000, 0x100000, type)); }

    PartitionGPT partition_;
    std::vector<std::wstring> reasons_;
    support::LoggerCapture log_;
};

TEST_F(PartitionGptRulesTest, GetPartitionTypeName_EveryType_IsItsDisplayName) {
    for (const GptTypeCase& type : kGptTypes) {
        Take(type.type);
        std::wstring name = L"left";
        partition_.GetPartitionTypeName(name);
        EXPECT_EQ(support::Wide(type.name), name);
    }
}

TEST_F(PartitionGptRulesTest, CanBackup_DataPartitions_AgreesSilently) {
    for (const GptTypeCase& type : kGptTypes) {
        if (type.may_be_backed_up) {
            Take(type.type);
            EXPECT_TRUE(partition_.can_backup(reasons_)) << type.name;
        }
    }
    EXPECT_THAT(reasons_, IsEmpty());
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionGptRulesTest, CanBackup_OtherTypes_RefusesWithNameAndGuid) {
    for (const GptTypeCase& type : kGptTypes) {
        if (type.may_be_backed_up) {
            continue;
        }
        Take(type.type);
        reasons_.clear();
        log_.Clear();
        const std::string reason =
            std::string(" Can't backup partition of type ") + type.name + " " + type.text;

        EXPECT_FALSE(partition_.can_backup(reasons_)) << type.name;
        EXPECT_THAT(reasons_, ElementsAre(support::Wide(reason)));
        EXPECT_THAT(log_.all(), ElementsAre(Info("bmr_common::PartitionGPT::can_backup " + reason)));
    }
}

TEST_F(PartitionGptRulesTest, CanBackup_ReasonsOfOthers_AreKept) {
    Take(entries::kReserved);
    reasons_ = {L"other"};

    partition_.can_backup(reasons_);

    ASSERT_EQ(2U, reasons_.size());
    EXPECT_EQ(L"other", reasons_.front());
}

TEST_F(PartitionGptRulesTest, Predicates_EveryType_FollowTheTypeAlone) {
    for (const GptTypeCase& type : kGptTypes) {
        Take(type.type);
        EXPECT_EQ(type.dynamic, partition_.is_dynamic()) << type.name;
        EXPECT_EQ(type.unused, partition_.is_unused()) << type.name;
        EXPECT_EQ(type.bootable, partition_.is_bootable()) << type.name;
    }
}

TEST_F(PartitionGptRulesTest, Predicates_OneBitOff_AreAnotherType) {
    for (const GptTypeCase& type : kGptTypes) {
        for (const std::size_t byte : {std::size_t{0}, std::size_t{7}, std::size_t{8}, std::size_t{15}}) {
            GUID near_miss = type.type;
            reinterpret_cast<unsigned char*>(&near_miss)[byte] ^= 1U;
            Take(near_miss);
            std::wstring name;
            partition_.GetPartitionTypeName(name);
            EXPECT_EQ(L"Unknown partition", name) << type.name << " byte " << byte;
            EXPECT_FALSE(partition_.is_unused() || partition_.is_dynamic() || partition_.is_bootable());
        }
    }
}

class PartitionMbrRulesTest : public testing::Test {
protected:
    PARTITION_INFORMATION_EX entry_ = entries::Mbr(0x100000, 0x100000);
    PartitionMBR partition_;
    std::vector<std::wstring> reasons_;
    support::LoggerCapture log_;
};

TEST_F(PartitionMbrRulesTest, EveryType_IsBackableUnlessZeroAndDynamicIfLdm) {
    for (unsigned type = 0; type <= 0xFF; ++type) {
        entry_.Mbr.PartitionType = static_cast<std::uint8_t>(type);
        partition_.Initialize(entry_);
        EXPECT_EQ(type != 0, partition_.can_backup(reasons_)) << type;
        EXPECT_EQ(type == 0, partition_.is_unused()) << type;
        EXPECT_EQ(type == 0x42, partition_.is_dynamic()) << type;
    }
}

TEST_F(PartitionMbrRulesTest, CanBackup_Unused_GivesAndLogsTheReason) {
    entry_.Mbr.PartitionType = 0;
    partition_.Initialize(entry_);
    reasons_ = {L"other"};

    EXPECT_FALSE(partition_.can_backup(reasons_));
    EXPECT_THAT(reasons_, ElementsAre(L"other", L" Partition is marked as unused entry"));
    EXPECT_THAT(
        log_.all(),
        ElementsAre(Info("bmr_common::PartitionMBR::can_backup  Partition is marked as unused entry")));
}

TEST_F(PartitionMbrRulesTest, CanBackup_NotRecognizedActiveOrHidden_IsBackableAllTheSame) {
    entry_.Mbr.RecognizedPartition = 0;
    entry_.Mbr.BootIndicator = TRUE;
    entry_.Mbr.HiddenSectors = 0;
    partition_.Initialize(entry_);

    EXPECT_TRUE(partition_.can_backup(reasons_));
    EXPECT_THAT(reasons_, IsEmpty());
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(PartitionMbrRulesTest, IsBootable_BootIndicator_MustBeExactlyOne) {
    const std::pair<std::uint8_t, bool> cases[] = {
        {0, false}, {1, true}, {2, false}, {0x80, false}, {0xFF, false}};
    for (const auto& [indicator, bootable] : cases) {
        entry_.Mbr.BootIndicator = indicator;
        partition_.Initialize(entry_);
        EXPECT_EQ(bootable, partition_.is_bootable()) << static_cast<int>(indicator);
    }
}

}  // namespace
}  // namespace bmr_common

// Images on which the library creates fresh tables or rewrites master boot records. They are read back on a
// new machine here, and later by the partitioning tools.

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "images/written_table.h"
#include "support/scoped_import.h"
#include "unit/common/disk/listed_disks.h"

#include <gtest/gtest.h>

namespace {

using namespace written;
using namespace bmr_common;

constexpr const char* kNewDiskId = "DDDDDDDD-0000-4000-8000-000000000001";
constexpr std::uint32_t kNewSignature = 0x6AA54321;

CREATE_DISK GptDescription(DWORD max_partitions = 128) {
    CREATE_DISK description{};
    description.PartitionStyle = PARTITION_STYLE_GPT;
    description.Gpt.DiskId = Guid(kNewDiskId);
    description.Gpt.MaxPartitionCount = max_partitions;
    return description;
}

CREATE_DISK MbrDescription() {
    CREATE_DISK description{};
    description.PartitionStyle = PARTITION_STYLE_MBR;
    description.Mbr.Signature = kNewSignature;
    return description;
}

CREATE_DISK RawDescription() {
    CREATE_DISK description{};
    description.PartitionStyle = PARTITION_STYLE_RAW;
    return description;
}

struct CreationCase {
    const char* name;
    const char* source;
    CREATE_DISK description;
    Table meant;
};

std::ostream& operator<<(std::ostream& out, const CreationCase& test_case) {
    return out << test_case.name;
}

class DiskCreation : public testing::TestWithParam<CreationCase> {};

TEST_P(DiskCreation, InitializeRAWDisk_AnyDisk_HasTheEmptyTableAskedFor) {
    {
        const Machine machine(GetParam().source, GetParam().name);
        CREATE_DISK description = GetParam().description;
        ASSERT_TRUE(DiskDriveManager::InitializeRAWDisk(0, description));
    }
    ExpectWritten(GetParam().name, GetParam().meant);
}

INSTANTIATE_TEST_SUITE_P(
    Disks, DiskCreation,
    testing::Values(CreationCase{"raw-to-gpt", "edit-raw", GptDescription(), {"gpt", kNewDiskId, {}}},
                    CreationCase{"raw-to-mbr", "edit-raw", MbrDescription(), {"dos", "0x6aa54321", {}}},
                    CreationCase{"mbr-to-gpt", "edit-mbr", GptDescription(), {"gpt", kNewDiskId, {}}},
                    CreationCase{"gpt-to-mbr", "edit-gpt", MbrDescription(), {"dos", "0x6aa54321", {}}},
                    CreationCase{"gpt-to-gpt", "edit-gpt", GptDescription(), {"gpt", kNewDiskId, {}}},
                    CreationCase{
                        "gpt-of-256", "edit-raw", GptDescription(256), {"gpt", kNewDiskId, {}, 66, 32702}},
                    CreationCase{"mbr-to-raw", "edit-mbr", RawDescription(), {}},
                    CreationCase{"gpt-to-raw", "edit-gpt", RawDescription(), {}}));

// Gives access to the table that a fresh disk prepares.
class FreshGpt : public DiskDriveManagerGPT {
public:
    using DiskDriveManagerGPT::DiskDriveManagerGPT;
    PartitionManagerGPT& table() const { return dynamic_cast<PartitionManagerGPT&>(partition_manager()); }
};

class FreshMbr : public DiskDriveManagerMBR {
public:
    using DiskDriveManagerMBR::DiskDriveManagerMBR;
    PartitionManager& table() const { return partition_manager(); }
};

// Disk 1 of the machine is the listed model: the fresh disk takes its geometry and must get another id.
class FreshDisk {
public:
    FreshDisk(const std::string& model, const std::string& name)
        : machine_("edit-raw", name, R"(, {"index": 1, "image": ")" + model + R"(.img"})"),
          model_(DiskDriveManagerFactory().CreateAndInitialize(1)) {
        disks_.Put(model_);
    }

    bool Prepare(DiskDriveManager& disk) { return disk.InitializeUsingGeometryOf(model_, disks_); }

private:
    Machine machine_;
    DiskDriveManagerPtr model_;
    listed::Disks disks_;
};

TEST(FreshDisks, Gpt_PreparedCreatedAndFilled_HasAnIdOfItsOwnAndThePartitions) {
    constexpr const char* kFirst = "BBBBBBBB-0000-4000-8000-000000000011";
    constexpr const char* kSecond = "BBBBBBBB-0000-4000-8000-000000000012";
    {
        const IssuedGuids guids({kGptId, kNewDiskId, kFirst, kSecond});
        FreshDisk fresh("edit-gpt", "fresh-gpt");
        FreshGpt disk(0);
        ASSERT_TRUE(fresh.Prepare(disk));
        ASSERT_TRUE(disk.CreateRawDisk(0));
        std::int64_t start = 0;
        std::int64_t size = 0;
        const auto add = [&](std::int64_t at, std::int64_t length, const char* type) {
            return disk.table().AddPartitionInMemory(at, length, length, disk.geometry().disk_size(),
                                                     kAlignment, Guid(type), &start, &size);
        };
        ASSERT_TRUE(add(1 * kMiB, 2 * kMiB, kSystem));
        ASSERT_TRUE(add(3 * kMiB, 12 * kMiB, kBasicData));
        ASSERT_TRUE(disk.table().CommitPartitionTable());
    }
    ExpectWritten("fresh-gpt", {"gpt",
                                kNewDiskId,
                                {{1, 2048, 4096, kSystem, kFirst, kNewName},
                                 {2, 6144, 24576, kBasicData, kSecond, kNewName}}});
}

// A copy of the manager's layout, to be changed and written.
win::ByteBuffer LayoutOf(const PartitionManager& manager) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(manager.layout());
    return {bytes, bytes + 48 + std::size_t{144} * manager.layout()->PartitionCount};
}

void Fill(PARTITION_INFORMATION_EX& entry, std::int64_t start, std::int64_t size, BYTE type, bool active) {
    entry.PartitionStyle = PARTITION_STYLE_MBR;
    entry.StartingOffset.QuadPart = start;
    entry.PartitionLength.QuadPart = size;
    entry.Mbr.PartitionType = type;
    entry.Mbr.BootIndicator = active;
    entry.Mbr.HiddenSectors = static_cast<DWORD>(start / kSector);
}

// Results of rand(), from which a signature is made.
std::vector<int> random_numbers;
int NextRandom() {
    const int number = random_numbers.front();
    random_numbers.erase(random_numbers.begin());
    return number;
}

TEST(FreshDisks, Mbr_PreparedCreatedAndFilled_HasASignatureOfItsOwnAndThePartitions) {
    {
        random_numbers = {0x1BAD, 0x4AFE, 0x1BAD, 0x4AFF};
        const support::ScopedImport random("rand", &NextRandom);
        FreshDisk fresh("edit-mbr", "fresh-mbr");
        FreshMbr disk(0);
        ASSERT_TRUE(fresh.Prepare(disk));
        ASSERT_TRUE(random_numbers.empty()) << "the signature of disk 1 was not passed over";
        ASSERT_TRUE(disk.CreateRawDisk(0));
        win::ByteBuffer layout = LayoutOf(disk.table());
        Fill(LayoutIn(layout)->PartitionEntry[0], 1 * kMiB, 4 * kMiB, 0x07, true);
        Fill(LayoutIn(layout)->PartitionEntry[2], 8 * kMiB, 8 * kMiB, 0x0C, false);
        ASSERT_TRUE(disk.table().WritePartitionTableToDisk(layout));
    }
    ExpectWritten("fresh-mbr",
                  {"dos", "0x1bad4aff", {{1, 2048, 8192, "7", "", "", "", true}, {3, 16384, 16384, "c"}}});
}

TEST(MbrWrites, WritePartitionTableToDisk_Unchanged_KeepsTheChainOfLogicalPartitions) {
    {
        const Machine machine("edit-mbr", "mbr-unchanged");
        PartitionManagerMBR manager(0);
        Read(manager);
        win::ByteBuffer layout = LayoutOf(manager);
        ASSERT_TRUE(manager.WritePartitionTableToDisk(layout));
    }
    ExpectWritten("mbr-unchanged", {"dos",
                                    "0x1bad4afe",
                                    {{1, 2048, 4096, "7", "", "", "", true},
                                     {2, 6144, 4096, "27"},
                                     {3, 10240, 20480, "f"},
                                     {5, 12288, 4096, "7"},
                                     {6, 18432, 4096, "b"},
                                     {7, 24576, 2048, "7"}}});
}

TEST(MbrWrites, WritePartitionTableToDisk_Changed_HasEveryChange) {
    {
        const Machine machine("edit-mbr", "mbr-changed");
        PartitionManagerMBR manager(0);
        Read(manager);
        win::ByteBuffer layout = LayoutOf(manager);
        DRIVE_LAYOUT_INFORMATION_EX& table = *LayoutIn(layout);
        ASSERT_EQ(16U, table.PartitionCount);
        table.Mbr.Signature = kNewSignature;
        table.PartitionEntry[0].Mbr.BootIndicator = FALSE;
        Fill(table.PartitionEntry[1], 3 * kMiB, 1 * kMiB, 0x0C, true);
        Fill(table.PartitionEntry[3], 4 * kMiB, 1 * kMiB, 0x83, false);
        table.PartitionEntry[4].PartitionLength.QuadPart = 1 * kMiB;
        table.PartitionEntry[8].Mbr.PartitionType = 0x07;
        table.PartitionEntry[12].StartingOffset.QuadPart = 13 * kMiB;
        ASSERT_TRUE(manager.WritePartitionTableToDisk(layout));
    }
    ExpectWritten("mbr-changed", {"dos",
                                  "0x6aa54321",
                                  {{1, 2048, 4096, "7"},
                                   {2, 6144, 2048, "c", "", "", "", true},
                                   {3, 10240, 20480, "f"},
                                   {4, 8192, 2048, "83"},
                                   {5, 12288, 2048, "7"},
                                   {6, 18432, 4096, "7"},
                                   {7, 26624, 2048, "7"}}});
}

TEST(MbrWrites, WritePartitionTableToDisk_LastLogicalRemoved_EndsTheChainBefore) {
    {
        const Machine machine("edit-mbr", "mbr-shorter-chain");
        PartitionManagerMBR manager(0);
        Read(manager);
        win::ByteBuffer layout = LayoutOf(manager);
        LayoutIn(layout)->PartitionCount = 12;
        LayoutIn(layout)->PartitionEntry[9] = PARTITION_INFORMATION_EX{};
        ASSERT_TRUE(manager.WritePartitionTableToDisk(layout));
    }
    ExpectWritten("mbr-shorter-chain", {"dos",
                                        "0x1bad4afe",
                                        {{1, 2048, 4096, "7", "", "", "", true},
                                         {2, 6144, 4096, "27"},
                                         {3, 10240, 20480, "f"},
                                         {5, 12288, 4096, "7"},
                                         {6, 18432, 4096, "b"}}});
}

TEST(MbrWrites, WritePartitionTableToDisk_ExtendedPartitionRemoved_LeavesThePrimaries) {
    {
        const Machine machine("edit-mbr", "mbr-without-logicals");
        PartitionManagerMBR manager(0);
        Read(manager);
        win::ByteBuffer layout = LayoutOf(manager);
        LayoutIn(layout)->PartitionCount = 4;
        LayoutIn(layout)->PartitionEntry[2] = PARTITION_INFORMATION_EX{};
        ASSERT_TRUE(manager.WritePartitionTableToDisk(layout));
    }
    ExpectWritten("mbr-without-logicals",
                  {"dos", "0x1bad4afe", {{1, 2048, 4096, "7", "", "", "", true}, {2, 6144, 4096, "27"}}});
}

}  // namespace

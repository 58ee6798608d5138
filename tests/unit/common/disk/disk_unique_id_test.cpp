#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "support/refused_imports.h"
#include "support/scoped_import.h"
#include "unit/common/disk/listed_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <vector>

namespace bmr_common {
namespace {

using support::Error;
using testing::ElementsAre;
using testing::IsEmpty;

// Counts the attempts, and reports its id as in use during the first `taken` attempts.
class CountingDisk : public DiskDriveManagerMBR {
public:
    CountingDisk(std::uint32_t index, int taken) : DiskDriveManagerMBR(index), taken_(taken) {}

    void SetUniqueIdToRandom() override { ++rounds; }
    bool has_same_unique_id(const DiskDriveManager& /*other*/) const override { return rounds <= taken_; }

    int rounds = 0;

private:
    int taken_;
};

class DiskUniqueIdTest : public testing::Test {
protected:
    listed::Disks disks_;
    support::LoggerCapture log_;
};

TEST_F(DiskUniqueIdTest, AssignUniqueId_NoOtherDisk_TakesOneRound) {
    CountingDisk disk(0, 100);

    EXPECT_TRUE(disk.AssignUniqueId(disks_));
    EXPECT_EQ(1, disk.rounds);
}

TEST_F(DiskUniqueIdTest, AssignUniqueId_OtherStylesAndEmptyEntries_AreNotCompared) {
    disks_.Put(boost::make_shared<DiskDriveManagerGPT>(1));
    disks_.Put(boost::make_shared<DiskDriveManagerUnknown>(2));
    disks_.PutNothing(L"3");
    CountingDisk disk(0, 100);

    EXPECT_TRUE(disk.AssignUniqueId(disks_));
    EXPECT_EQ(1, disk.rounds);
}

TEST_F(DiskUniqueIdTest, AssignUniqueId_TheDiskItself_IsNotCompared) {
    const auto disk = boost::make_shared<CountingDisk>(0, 100);
    disks_.Put(disk);

    EXPECT_TRUE(disk->AssignUniqueId(disks_));
    EXPECT_EQ(1, disk->rounds);
}

TEST_F(DiskUniqueIdTest, AssignUniqueId_IdTakenAtFirst_GoesOn) {
    disks_.Put(boost::make_shared<DiskDriveManagerMBR>(1));
    CountingDisk disk(0, 99);

    EXPECT_TRUE(disk.AssignUniqueId(disks_));
    EXPECT_EQ(100, disk.rounds);
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(DiskUniqueIdTest, AssignUniqueId_IdAlwaysTaken_GivesUpAfter100Rounds) {
    disks_.Put(boost::make_shared<DiskDriveManagerMBR>(1));
    CountingDisk disk(0, 100);

    EXPECT_FALSE(disk.AssignUniqueId(disks_));
    EXPECT_EQ(100, disk.rounds);
    EXPECT_TRUE(
        log_.ContainsPart(support::kHostError,
                          "bmr_common::DiskDriveManager::AssignUniqueId Failed to get unique disk signature"))
        << log_;
}

std::vector<int> random_numbers;
int NextRandom() {
    const int number = random_numbers.front();
    random_numbers.erase(random_numbers.begin());
    return number;
}

TEST_F(DiskUniqueIdTest, SetUniqueIdToRandom_Mbr_IsTwoNumbersOf15Bits) {
    const support::ScopedImport random("rand", &NextRandom);
    DiskDriveManagerMBR disk(0);

    random_numbers = {0x1234, 0x7FFF};
    disk.SetUniqueIdToRandom();
    EXPECT_EQ(0x12347FFFU, disk.geometry().signature());

    random_numbers = {0x7FFF, 0x0001};
    disk.SetUniqueIdToRandom();
    EXPECT_EQ(0x7FFF0001U, disk.geometry().signature());
}

TEST_F(DiskUniqueIdTest, SetUniqueIdToRandom_Mbr_LeavesBits15And31Clear) {
    DiskDriveManagerMBR disk(0);
    std::uint32_t seen = 0;
    for (int i = 0; i < 1000; ++i) {
        disk.SetUniqueIdToRandom();
        seen |= disk.geometry().signature();
    }
    EXPECT_EQ(0x7FFF7FFFU, seen);
}

TEST_F(DiskUniqueIdTest, SetUniqueIdToRandom_Gpt_NoGuidToBeHad_LogsAndStoresZeros) {
    DiskDriveManagerGPT disk(0);
    disk.SetUniqueIdToRandom();
    const auto refused = support::RefuseGuids();

    disk.SetUniqueIdToRandom();

    EXPECT_TRUE(IsEqualGUID(GUID{}, disk.geometry().disk_id()));
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("CoCreateGuid call failed error: 2147500037")));
}

unsigned seed = 0;
int seedings = 0;
void KeepSeed(unsigned value) {
    seed = value;
    ++seedings;
}
__time64_t FixedTime(__time64_t* /*time*/) {
    return 0x100000007LL;
}

TEST_F(DiskUniqueIdTest, Constructor_EveryKind_SeedsTheRandomNumbersWithTheTime) {
    const support::ScopedImport seeding("srand", &KeepSeed);
    const support::ScopedImport time("_time64", &FixedTime);
    seedings = 0;

    const DiskDriveManagerMBR mbr(0);
    EXPECT_EQ(7U, seed);
    const DiskDriveManagerGPT gpt(0);
    const DiskDriveManagerUnknown unknown(0);

    EXPECT_EQ(3, seedings);
}

}  // namespace
}  // namespace bmr_common

#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/disk/expected_lines.h"
#include "unit/common/disk/listed_disks.h"
#include "unit/common/disk/simulated_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using expected::Error;
using expected::Info;
using simulated_disks::Machine;
using testing::ElementsAre;
using testing::IsEmpty;

// A machine without disks, for tests in which only the disk indexes matter.
constexpr const char* kNoDisks = R"({"disks": []})";

std::vector<std::wstring> Keys(const DeviceManager& manager) {
    std::vector<std::wstring> keys;
    for (const auto& [key, disk] : manager.disks()) {
        keys.push_back(key);
    }
    return keys;
}

class ThrowingFactory : public DiskDriveManagerFactory {
public:
    DiskDriveManagerPtr CreateUnknown(std::uint32_t /*disk_index*/) const override {
        throw std::runtime_error("no disk object");
    }
};

class CountingFactory : public DiskDriveManagerFactory {
public:
    DiskDriveManagerPtr CreateUnknown(std::uint32_t disk_index) const override {
        made.push_back(disk_index);
        return DiskDriveManagerFactory::CreateUnknown(disk_index);
    }

    mutable std::vector<std::uint32_t> made;
};

class DeviceManagerTest : public testing::Test {
protected:
    Machine machine_{kNoDisks};
    support::LoggerCapture log_;
};

TEST_F(DeviceManagerTest, New_HasNoDisks) {
    EXPECT_THAT(DeviceManager().disks(), IsEmpty());
}

TEST_F(DeviceManagerTest, Initialize_ListedDisks_AreMadeInTextOrder) {
    listed::Disks manager{L"2", L"10", L"0", L"1", L"1"};
    const auto factory = boost::make_shared<CountingFactory>();
    manager.SetFactory(factory);

    EXPECT_TRUE(manager.InitializeWithCurrentDisks());

    EXPECT_THAT(Keys(manager), ElementsAre(L"0", L"1", L"10", L"2"));
    EXPECT_THAT(factory->made, ElementsAre(0U, 1U, 10U, 2U));
    EXPECT_EQ(10U, manager.GetDevice(10)->disk_index());
}

TEST_F(DeviceManagerTest, Initialize_NoFactorySet_MakesItsOwn) {
    listed::Disks manager{L"7"};

    EXPECT_TRUE(manager.InitializeWithCurrentDisks());

    ASSERT_TRUE(manager.GetDevice(7));
    EXPECT_EQ(1U, machine_.simulation().calls().Count("CreateFileW", L"\\\\.\\PhysicalDrive7"));
}

TEST_F(DeviceManagerTest, Initialize_Again_ForgetsTheDisksThereWere) {
    listed::Disks manager{L"7"};
    manager.Put(boost::make_shared<DiskDriveManagerMBR>(5));

    EXPECT_TRUE(manager.InitializeWithCurrentDisks());

    EXPECT_THAT(Keys(manager), ElementsAre(L"7"));
}

TEST_F(DeviceManagerTest, Initialize_ListingFails_IsItsFailure) {
    listed::Disks manager({L"7"}, false);
    manager.Put(boost::make_shared<DiskDriveManagerMBR>(5));

    EXPECT_FALSE(manager.InitializeWithCurrentDisks());

    EXPECT_EQ("", machine_.CallNames());
    EXPECT_THAT(log_.Messages(), IsEmpty());
    EXPECT_FALSE(manager.GetDevice(5));
}

TEST_F(DeviceManagerTest, Initialize_IndexThatIsNoNumber_LogsTheException) {
    for (const wchar_t* key : {L"abc", L"", L"4294967296", L"1 "}) {
        listed::Disks manager{key};
        log_.Clear();

        EXPECT_FALSE(manager.InitializeWithCurrentDisks());
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Error("Exception in DeviceManager::InitializeWithCurrentDisks")));
    }
}

TEST_F(DeviceManagerTest, Initialize_FactoryThrows_LogsTheException) {
    listed::Disks manager{L"0"};
    manager.SetFactory(boost::make_shared<ThrowingFactory>());

    EXPECT_FALSE(manager.InitializeWithCurrentDisks());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("Exception in DeviceManager::InitializeWithCurrentDisks")));
}

TEST_F(DeviceManagerTest, GetDevice_NoSuchIndex_IsEmptyAndTraced) {
    listed::Disks manager;
    manager.Put(boost::make_shared<DiskDriveManagerMBR>(5));

    EXPECT_FALSE(manager.GetDevice(50));
    EXPECT_THAT(log_.all(), ElementsAre(support::LogLine{
                                support::kHostTrace, "DeviceManager::GetDevice no device with index 50"}));
}

TEST_F(DeviceManagerTest, GetDevice_KnownIndex_IsTheDiskItself) {
    listed::Disks manager;
    const auto disk = boost::make_shared<DiskDriveManagerMBR>(4294967295U);
    manager.Put(disk);

    EXPECT_EQ(disk, manager.GetDevice(4294967295U));
    EXPECT_THAT(log_.all(), IsEmpty());
}

TEST_F(DeviceManagerTest, GetDisks_Style_AppendsThoseInTextOrder) {
    listed::Disks manager;
    const auto two = boost::make_shared<DiskDriveManagerGPT>(2);
    const auto ten = boost::make_shared<DiskDriveManagerGPT>(10);
    const auto mbr = boost::make_shared<DiskDriveManagerMBR>(1);
    const auto raw = boost::make_shared<DiskDriveManagerUnknown>(3);
    for (const DiskDriveManagerPtr& disk : std::vector<DiskDriveManagerPtr>{two, ten, mbr, raw}) {
        manager.Put(disk);
    }
    manager.PutNothing(L"0");
    std::vector<DiskDriveManagerPtr> disks = {mbr};

    manager.GetDisks(1, disks);
    EXPECT_THAT(disks, ElementsAre(mbr, ten, two));

    disks.clear();
    manager.GetDisks(2, disks);
    EXPECT_THAT(disks, ElementsAre(raw));
    EXPECT_TRUE(log_.ContainsPart(support::kHostTrace,
                                  "Entering function bmr_common::DeviceManager::GetDisks line "));
}

TEST_F(DeviceManagerTest, Dump_NoDisks_SaysSo) {
    DeviceManager().DumpInfo();

    EXPECT_THAT(log_.Messages(),
                ElementsAre(Info(""), Info("[Device Information]"), Info("Number of Disks: 0")));
}

TEST_F(DeviceManagerTest, Dump_SeveralDisks_FollowsTheTextOrder) {
    listed::Disks manager{L"0", L"1", L"2", L"10"};
    ASSERT_TRUE(manager.InitializeWithCurrentDisks());
    log_.Clear();

    manager.DumpInfo();

    std::vector<std::string> ids;
    for (const std::string& line : log_.Lines(support::kHostInformation)) {
        if (line.starts_with("Disk id: ") || line.starts_with("Number of Disks")) {
            ids.push_back(line);
        }
    }
    EXPECT_THAT(ids,
                ElementsAre("Number of Disks: 4", "Disk id: 0", "Disk id: 1", "Disk id: 10", "Disk id: 2"));
}

TEST_F(DeviceManagerTest, Dump_EmptyEntry_IsReportedAndSkipped) {
    listed::Disks manager;
    manager.PutNothing(L"12");
    manager.Put(boost::make_shared<DiskDriveManagerUnknown>(3));

    manager.DumpInfo();

    const std::vector<support::LogLine> lines = log_.Messages();
    ASSERT_GT(lines.size(), 5U);
    EXPECT_EQ(Info("Number of Disks: 2"), lines[2]);
    EXPECT_EQ(Error("DeviceManager::DumpInfo - NULL device found with id 12"), lines[3]);
    EXPECT_TRUE(log_.Contains(support::kHostInformation, "Disk id: 3"));
}

TEST_F(DeviceManagerTest, Capture_NoDisks_WritesTheirNumber) {
    const DeviceManager manager;

    EXPECT_THAT(captured::Elements([&](CMSXmlNode& node) { manager.CaptureInfo(node); }),
                ElementsAre("DeviceInfo", "DeviceInfo/NumberOfDisks=0"));
}

TEST_F(DeviceManagerTest, Capture_SeveralDisks_AreCountedInTextOrder) {
    listed::Disks manager{L"0", L"1", L"2", L"10"};
    ASSERT_TRUE(manager.InitializeWithCurrentDisks());

    EXPECT_THAT(captured::Elements([&](CMSXmlNode& node) { manager.CaptureInfo(node); }),
                ElementsAre("DeviceInfo", "DeviceInfo/NumberOfDisks=4", "DeviceInfo/Disk1",
                            "DeviceInfo/Disk1/DiskId=0", "DeviceInfo/Disk1/DiskSize=0", "DeviceInfo/Disk2",
                            "DeviceInfo/Disk2/DiskId=1", "DeviceInfo/Disk2/DiskSize=0", "DeviceInfo/Disk3",
                            "DeviceInfo/Disk3/DiskId=10", "DeviceInfo/Disk3/DiskSize=0", "DeviceInfo/Disk4",
                            "DeviceInfo/Disk4/DiskId=2", "DeviceInfo/Disk4/DiskSize=0"));
}

}  // namespace
}  // namespace bmr_common

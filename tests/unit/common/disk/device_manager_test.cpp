#include "common/disk/disk_drive_manager_gpt.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "common/disk/disk_drive_manager_unknown.h"
#include "support/logger_capture.h"
#include "unit/common/disk/captured_elements.h"
#include "unit/common/disk/listed_disks.h"
#include "unit/common/disk/simulated_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace bmr_common {
namespace {

using simulated_disks::Machine;
using support::Error;
using support::Trace;
using testing::ElementsAre;
using testing::IsEmpty;

// A machine without disks, for tests in which only the disk indexes matter.
constexpr const char* kNoDisks = R"({"disks": []})";

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

TEST_F(DeviceManagerTest, Initialize_ListedDisks_AreMadeInTextOrder) {
    listed::Disks manager{L"2", L"10", L"0", L"1", L"1"};
    const auto factory = boost::make_shared<CountingFactory>();
    manager.SetFactory(factory);

    EXPECT_TRUE(manager.InitializeWithCurrentDisks());

    EXPECT_THAT(listed::Keys(manager), ElementsAre(L"0", L"1", L"10", L"2"));
    EXPECT_THAT(factory->made, ElementsAre(0U, 1U, 10U, 2U));
    EXPECT_EQ(10U, manager.GetDevice(10)->disk_index());
}

TEST_F(DeviceManagerTest, Initialize_ListingFails_IsItsFailure) {
    listed::Disks manager({L"7"}, false);
    manager.Put(boost::make_shared<DiskDriveManagerMBR>(5));

    EXPECT_FALSE(manager.InitializeWithCurrentDisks());

    EXPECT_EQ(0U, machine_.simulation().calls().size());
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

TEST_F(DeviceManagerTest, GetDevice_NoSuchIndex_IsEmptyAndTraced) {
    listed::Disks manager;
    manager.Put(boost::make_shared<DiskDriveManagerMBR>(5));

    EXPECT_FALSE(manager.GetDevice(50));
    EXPECT_THAT(log_.all(), ElementsAre(Trace("DeviceManager::GetDevice no device with index 50")));
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

TEST_F(DeviceManagerTest, Capture_NoDisks_WritesTheirNumber) {
    const DeviceManager manager;

    EXPECT_THAT(captured::Elements([&](CMSXmlNode& node) { manager.CaptureInfo(node); }),
                ElementsAre("DeviceInfo", "DeviceInfo/NumberOfDisks=0"));
}

}  // namespace
}  // namespace bmr_common

#include "common/disk/device_manager.h"
#include "common/disk/disk_drive_manager_mbr.h"
#include "machine/session/session.h"
#include "support/logger_capture.h"
#include "support/refused_imports.h"
#include "support/scoped_import.h"
#include "unit/common/disk/listed_disks.h"

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <objbase.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace bmr_common {
namespace {

using support::Error;
using support::Info;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kServer = R"({"disks": [
    {"index": 2, "size": "1 GiB"}, {"index": 10, "size": "1 GiB"}, {"index": 0, "size": "1 GiB"},
    {"index": 1, "size": "1 GiB"}]})";

// Starts with a disk that no machine lists, so that a test notices when the map is cleared.
class LiveDisks : public DeviceManager {
public:
    LiveDisks() { disks_[L"77"] = boost::make_shared<DiskDriveManagerMBR>(77U); }
    void Forget() { disks_.clear(); }
};

// A machine that lists one disk drive for each of the "Index" properties.
std::string ListingOf(const std::vector<std::string>& indexes) {
    std::string instances;
    for (const std::string& index : indexes) {
        instances += std::string(instances.empty() ? "" : ", ") + "{\"Index\": " + index + "}";
    }
    return R"({"disks": [], "wmi": {"Win32_DiskDrive": [)" + instances + "]}}";
}

class DeviceManagerWmiTest : public testing::Test {
protected:
    // Makes the manager list the machine's disks, and checks that no COM object leaks.
    bool Obtain(const std::string& json) {
        return Obtain(json, [](machine::Simulation&) {});
    }

    template <class Prepare>
    bool Obtain(const std::string& json, Prepare&& prepare) {
        machine::Session session(machine::ParseDescription(json, "machine"));
        prepare(session.simulation());
        const bool obtained = disks_.ObtainPhysicalDrivesIndexes();
        EXPECT_EQ(0U, session.simulation().live_objects());
        return obtained;
    }

    // The map keys that these indexes result in.
    std::vector<std::wstring> KeysOf(const std::vector<std::string>& indexes) {
        disks_.Forget();
        EXPECT_TRUE(Obtain(ListingOf(indexes)));
        return listed::Keys(disks_);
    }

    LiveDisks disks_;
    support::LoggerCapture log_;
};

TEST_F(DeviceManagerWmiTest, Obtain_Index255_IsLeftOut) {
    EXPECT_THAT(KeysOf({"0", "255", "256"}), ElementsAre(L"0", L"256"));
}

TEST_F(DeviceManagerWmiTest, Obtain_SameIndexTwice_IsOneKey) {
    EXPECT_THAT(KeysOf({"3", "3"}), ElementsAre(L"3"));
}

TEST_F(DeviceManagerWmiTest, Obtain_LargestNumber_IsWhole) {
    EXPECT_THAT(KeysOf({R"({"type": "VT_UI4", "value": 4294967295})"}), ElementsAre(L"4294967295"));
}

TEST_F(DeviceManagerWmiTest, Obtain_NotConnected_IsAFailure) {
    EXPECT_FALSE(Obtain(kServer, [](machine::Simulation& simulation) {
        simulation.faults().Fail("IWbemLocator::ConnectServer", 0x80070005);
    }));
    ASSERT_FALSE(log_.Messages().empty());
    EXPECT_EQ(Error("DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized"),
              log_.Messages().back());
}

TEST_F(DeviceManagerWmiTest, Obtain_OneIndexUnreadable_StopsWithFailure) {
    EXPECT_FALSE(Obtain(ListingOf({"3", R"({"error": "0x80041002"})", "5"})));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("DeviceManager::ObtainPhysicalDrivesIndexes wmi.Get failed")));
    EXPECT_FALSE(disks_.disks().contains(L"5"));
}

TEST_F(DeviceManagerWmiTest, Dump_OneIndexUnreadable_ReportsTheNumbersReadBeforeIt) {
    machine::Session session(
        machine::ParseDescription(ListingOf({"3", "12", R"({"error": "0x80041002"})", "5"}), "machine"));
    EXPECT_FALSE(disks_.InitializeWithCurrentDisks());
    log_.Clear();

    disks_.DumpInfo();

    EXPECT_THAT(log_.Messages(),
                ElementsAre(Info(""), Info("[Device Information]"), Info("Number of Disks: 2"),
                            Error("DeviceManager::DumpInfo - NULL device found with id 12"),
                            Error("DeviceManager::DumpInfo - NULL device found with id 3")));
}

HRESULT WINAPI ThrowFromCom(void* /*reserved*/, DWORD /*model*/) {
    throw std::runtime_error("no COM");
}

TEST_F(DeviceManagerWmiTest, Obtain_NoCom_IsAFailure) {
    const auto refused = support::RefuseCom();

    EXPECT_FALSE(disks_.ObtainPhysicalDrivesIndexes());
    EXPECT_THAT(log_.all(),
                Not(Contains(Error("DeviceManager::ObtainPhysicalDrivesIndexes wmi not initialized"))));
}

TEST_F(DeviceManagerWmiTest, Obtain_Exception_LogsAndEmptiesTheMap) {
    const support::ScopedImport throwing("CoInitializeEx", &ThrowFromCom);

    EXPECT_FALSE(disks_.ObtainPhysicalDrivesIndexes());

    EXPECT_THAT(disks_.disks(), IsEmpty());
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("DeviceManager::ObtainPhysicalDrivesIndexes exception")));
}

}  // namespace
}  // namespace bmr_common

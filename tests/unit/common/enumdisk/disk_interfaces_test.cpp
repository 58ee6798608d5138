#include "common/enumdisk/disk_interfaces.h"

#include "support/each_of.h"
#include "support/refused_imports.h"
#include "unit/common/enumdisk/enum_machine.h"

namespace {

using testing::ElementsAre;

class DiskInterfaces : public enum_machine::EnumMachine {
protected:
    DiskInterfaces() : disks_(3) {
        for (std::size_t i = 0; i < disks_.size(); ++i) {
            disks_[i].disk_number = static_cast<std::uint32_t>(i);
        }
    }

    std::vector<std::wstring> Assign() {
        AssignInterfaceTypes(disks_);
        return support::EachOf(disks_, &DiskRow::interface_type);
    }

    std::vector<DiskRow> disks_;
};

constexpr char kThreeDisks[] = R"({"disks": [
    {"index": 0, "size": "1 GiB", "style": "mbr", "wmi": {"InterfaceType": "IDE"}},
    {"index": 1, "size": "1 GiB", "style": "mbr", "wmi": {"InterfaceType": "USB"}},
    {"index": 2, "size": "1 GiB", "style": "mbr", "wmi": false}]})";

TEST_F(DiskInterfaces, TypeNull_IsEmpty) {
    Use(kThreeDisks);
    machine::WmiProperty none;
    none.name = L"InterfaceType";
    for (machine::WmiProperty& property :
         simulation().description().wmi.at(L"WIN32_DISKDRIVE").instances.at(0)) {
        if (property.name == none.name) {
            property = none;
        }
    }
    EXPECT_THAT(Assign(), ElementsAre(L"", L"USB", L""));
}

TEST_F(DiskInterfaces, TypeNotReadable_LeavesThatDiskEmptyAndGoesOn) {
    Use(kThreeDisks);
    faults().Add({"IWbemClassObject::Get", L"Win32_DiskDrive.InterfaceType", 1, false, {}, {}});
    EXPECT_THAT(Assign(), ElementsAre(L"", L"USB", L""));
}

TEST_F(DiskInterfaces, IndexNotReadable_LeavesThatDriveOut) {
    Use(kThreeDisks);
    faults().Add({"IWbemClassObject::Get", L"Win32_DiskDrive.Index", 1, false, {}, {}});
    EXPECT_THAT(Assign(), ElementsAre(L"", L"USB", L""));
}

TEST_F(DiskInterfaces, NoConnection_LeavesAllEmpty) {
    Use(kThreeDisks);
    faults().Fail("IWbemLocator::ConnectServer", 0x80041003);
    EXPECT_THAT(Assign(), ElementsAre(L"", L"", L""));
}

TEST_F(DiskInterfaces, ComRefuses_LeavesAllEmpty) {
    Use(kThreeDisks);
    const auto refused = support::RefuseCom();
    EXPECT_THAT(Assign(), ElementsAre(L"", L"", L""));
    EXPECT_EQ(simulation().calls().size(), 0U);
}

TEST_F(DiskInterfaces, DriveWithoutNumber_GivesItsTypeToNoDisk) {
    Use(R"({"wmi": {"Win32_DiskDrive": [{"Index": 255, "InterfaceType": "USB"}]}})");
    disks_[0].disk_number = 255;
    EXPECT_THAT(Assign(), ElementsAre(L"", L"", L""));
}

}  // namespace

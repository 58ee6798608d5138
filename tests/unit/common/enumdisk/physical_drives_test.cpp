// The disks that the enumerator lists: WMI's disk drives that are usable.

#include "common/enumdisk/enum_disk.h"
#include "support/refused_imports.h"
#include "unit/common/enumdisk/enum_machine.h"

namespace {

using support::Error;
using support::Trace;
using support::Warning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class PhysicalDrivesIndexes : public enum_machine::EnumMachine {
protected:
    bool List() { return EnumDisk::GetPhysicalDrivesIndexes(indexes_, maximum_); }

    // Makes a call on disk 0 of two fail, and lists the disks.
    bool ListWithFailure(const char* call, DWORD error) {
        Use(enum_machine::kTwoMbr);
        faults().Fail(call, error, enum_machine::kDrive0);
        return List();
    }

    std::vector<std::uint32_t> indexes_;
    std::int32_t maximum_ = 77;
};

TEST_F(PhysicalDrivesIndexes, GptDisk_IsUnavailableWithoutAMessageAndCountsForTheMaximum) {
    Use(enum_machine::kMbrAndGpt);
    EXPECT_TRUE(List());
    EXPECT_THAT(indexes_, ElementsAre(0U));
    EXPECT_EQ(maximum_, 1);
    EXPECT_EQ(simulation().calls().Count(enum_machine::kLength, enum_machine::kDrive1), 0U);
}

TEST_F(PhysicalDrivesIndexes, RawDisk_IsUsable) {
    Use(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "raw"}]})");
    EXPECT_TRUE(List());
    EXPECT_THAT(indexes_, ElementsAre(0U));
}

TEST_F(PhysicalDrivesIndexes, ReversedByWmi_StayReversed) {
    Use(R"({"disks": [{"index": 3, "size": "1 GiB", "style": "mbr"}, {"index": 1, "size": "1 GiB", "style": "mbr"}]})");
    EXPECT_TRUE(List());
    EXPECT_THAT(indexes_, ElementsAre(3U, 1U));
    EXPECT_EQ(maximum_, 3);
}

TEST_F(PhysicalDrivesIndexes, Index255_IsSkippedButCountsForTheMaximum) {
    Use(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr"}], "wmi": {"Win32_DiskDrive": [
        {"Index": 0}, {"Index": 255}]}})");
    EXPECT_TRUE(List());
    EXPECT_THAT(indexes_, ElementsAre(0U));
    EXPECT_EQ(maximum_, 255);
    EXPECT_EQ(simulation().calls().Count("CreateFileW", L"\\\\.\\PhysicalDrive255"), 0U);
}

TEST_F(PhysicalDrivesIndexes, IndexOfUnsigned32Bits_IsItsLow16Bits) {
    Use(R"({"wmi": {"Win32_DiskDrive": [{"Index": {"type": "VT_UI4", "value": 65791}}]}})");  // 0x100FF
    EXPECT_TRUE(List());
    EXPECT_EQ(maximum_, 255);
}

TEST_F(PhysicalDrivesIndexes, IndexNull_IsZero) {
    Use(R"({"disks": [{"index": 0, "size": "1 GiB", "style": "mbr"}],
            "wmi": {"Win32_DiskDrive": [{"Index": null}]}})");
    EXPECT_TRUE(List());
    EXPECT_THAT(indexes_, ElementsAre(0U));
    EXPECT_EQ(maximum_, 0);
}

TEST_F(PhysicalDrivesIndexes, LayoutNotReadable_IsUnavailableForThreeErrors) {
    for (const DWORD error : {21, 170, 2}) {
        for (const char* const call : {enum_machine::kLayoutEx, "CreateFileW"}) {
            Use(enum_machine::kTwoMbr);
            faults().Fail(call, error, enum_machine::kDrive0);
            indexes_.clear();
            log_.Clear();
            EXPECT_TRUE(List()) << error;
            EXPECT_THAT(indexes_, ElementsAre(1U));
            EXPECT_THAT(log_.all(), Contains(Warning("EnumDisk::DiskUsable Drive 0: unavailable error=" +
                                                     std::to_string(error))));
        }
    }
}

TEST_F(PhysicalDrivesIndexes, LayoutNotReadableOtherwise_EndsTheListingWithError) {
    EXPECT_FALSE(ListWithFailure(enum_machine::kLayoutEx, 5));
    EXPECT_THAT(indexes_, IsEmpty());
    EXPECT_EQ(maximum_, 0);
    EXPECT_EQ(simulation().calls().Count("CreateFileW", enum_machine::kDrive1), 0U);
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("Get drive layout of drive \\\\.\\PhysicalDrive0 failed error=5 0x5"),
                            Warning("EnumDisk::DiskUsable will return error. Drive 0: error=5")));
}

TEST_F(PhysicalDrivesIndexes, DriveThatCannotBeOpened_EndsTheListingWithError) {
    EXPECT_FALSE(ListWithFailure("CreateFileW", 5));
    EXPECT_THAT(
        log_.Messages(),
        ElementsAre(Error("GetDriveLayout: Opening the drive \\\\.\\PhysicalDrive0 failed error=5 0x5"),
                    Warning("EnumDisk::DiskUsable will return error. Drive 0: error=5")));
}

TEST_F(PhysicalDrivesIndexes, LengthNotReady_IsUnavailableAndItsFailureATrace) {
    EXPECT_TRUE(ListWithFailure(enum_machine::kLength, 21));
    EXPECT_THAT(indexes_, ElementsAre(1U));
    EXPECT_THAT(log_.all(), Contains(Trace("Get length of drive \\\\.\\PhysicalDrive0 failed error=21")));
    EXPECT_THAT(log_.Messages(), ElementsAre(Warning("EnumDisk::DiskUsable Drive 0: unavailable error=21")));
}

TEST_F(PhysicalDrivesIndexes, LengthFailsOtherwise_EndsTheListingWithError) {
    for (const DWORD error : {170, 2, 5}) {
        log_.Clear();
        EXPECT_FALSE(ListWithFailure(enum_machine::kLength, error)) << error;
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Warning("EnumDisk::DiskUsable will return error. Drive 0: error=" +
                                        std::to_string(error))));
    }
}

TEST_F(PhysicalDrivesIndexes, ErrorOfALaterDisk_KeepsTheEarlierOnes) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayoutEx, 5, enum_machine::kDrive1);
    EXPECT_FALSE(List());
    EXPECT_THAT(indexes_, ElementsAre(0U));
    EXPECT_EQ(maximum_, 1);
}

TEST_F(PhysicalDrivesIndexes, WmiWithoutConnection_FailsWithItsLine) {
    Use(enum_machine::kTwoMbr);
    faults().Fail("IWbemLocator::ConnectServer", 0x80041003);
    EXPECT_FALSE(List());
    EXPECT_EQ(maximum_, -1);
    EXPECT_THAT(log_.all(), Contains(Error("GetPhysicalDrivesIndexes wmi not initialized")));
}

TEST_F(PhysicalDrivesIndexes, ResetOrFirstFetchFails_FailsWithItsLine) {
    for (const char* const call : {"IEnumWbemClassObject::Reset", "IEnumWbemClassObject::Next"}) {
        Use(enum_machine::kTwoMbr);
        faults().Fail(call, 0x80041003);
        log_.Clear();
        EXPECT_FALSE(List());
        EXPECT_THAT(log_.Messages(), ElementsAre(Error("GetPhysicalDrivesIndexes FindFirstObject failed")));
    }
}

TEST_F(PhysicalDrivesIndexes, IndexNotReadable_FailsWithItsLine) {
    Use(enum_machine::kTwoMbr);
    faults().Add({"IWbemClassObject::Get", L"Win32_DiskDrive.Index", 2, false, {}, {}});
    EXPECT_FALSE(List());
    EXPECT_THAT(indexes_, ElementsAre(0U));
    EXPECT_THAT(log_.Messages(), ElementsAre(Error("GetPhysicalDrivesIndexes wmi.Get failed")));
}

TEST_F(PhysicalDrivesIndexes, ComRefuses_FailsWithItsLine) {
    Use(enum_machine::kTwoMbr);
    const auto refused = support::RefuseCom();
    EXPECT_FALSE(List());
    EXPECT_THAT(log_.all(), Contains(Error("GetPhysicalDrivesIndexes InitializeCOM error")));
    EXPECT_THAT(log_.all(), Contains(Error("CoInitializeEx failed error=0x8007000e calling function "
                                           "EnumDisk::GetPhysicalDrivesIndexes")));
    EXPECT_EQ(simulation().calls().size(), 0U);
}

}  // namespace

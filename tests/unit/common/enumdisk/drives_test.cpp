// The enumeration of the drives, with one row for each fixed volume.

#include "common/enumdisk/enum_disk.h"
#include "support/each_of.h"
#include "unit/common/enumdisk/enum_machine.h"
#include "unit/common/enumdisk/fixed_machine.h"

namespace {

using enum_machine::kMiB;
using fixed_machine::kFirst;
using fixed_machine::kSecond;
using support::Error;
using support::LogLine;
using support::Trace;
using support::Warning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kFirstText[] = "\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\";

class Drives : public enum_machine::EnumMachine {
protected:
    Drives() { Use(fixed_machine::kMachine); }

    bool Get() { return EnumDisk().GetDrives(drives_); }
    std::vector<std::wstring> Volumes() const { return support::EachOf(drives_, &DriveRow::volume); }

    std::vector<DriveRow> drives_;
};

TEST_F(Drives, FixedVolumes_AreRowsInTheSystemsOrder) {
    volume(1).mount_points = {L"D:\\Folder\\", L"E:\\"};
    faults().Fail("GetVolumeInformationW", 5, L"D:\\");
    EXPECT_TRUE(Get());
    ASSERT_THAT(drives_, SizeIs(2));
    EXPECT_EQ(drives_[0].volume, kFirst);
    EXPECT_EQ(drives_[0].letter, L"C:");
    EXPECT_EQ(drives_[0].file_system, L"NTFS");
    EXPECT_EQ(drives_[0].disk_number, 0);
    EXPECT_EQ(drives_[0].offset, 1 * kMiB);
    // The letter is the start of the first path, even if that is a folder.
    EXPECT_EQ(drives_[1].volume, kSecond);
    EXPECT_EQ(drives_[1].letter, L"D:");
    EXPECT_EQ(drives_[1].offset, 101 * kMiB);
}

TEST_F(Drives, VolumeWithoutLetter_HasNoFileSystemAndItsLine) {
    EXPECT_TRUE(Get());
    EXPECT_EQ(drives_.at(1).letter, L"");
    EXPECT_EQ(drives_.at(1).file_system, L"");
    EXPECT_THAT(
        log_.all(),
        Contains(Trace("EnumDisk::GetVolumeInfo GetVolumeInformation 'empty' drive letter passed in")));
    EXPECT_EQ(simulation().calls().Count("GetVolumeInformationW"), 1U);
}

TEST_F(Drives, PathsNotReadable_GoOnWithoutALetter) {
    const auto expect = [this](const char* error) {
        EXPECT_TRUE(Get());
        EXPECT_EQ(drives_.at(0).letter, L"");
        EXPECT_THAT(log_.Messages(),
                    ElementsAre(Warning(std::string("EnumDisk::GetDrives on ") + kFirstText +
                                        " GetVolumePathNamesForVolumeNameW error=" + error)));
        drives_.clear();
        log_.Clear();
    };
    const char* const call = "GetVolumePathNamesForVolumeNameW";
    faults().Fail(call, 87, kFirst);
    expect("0x57 87");
    // The system reports more characters than the buffer holds.
    faults().Clear();
    faults().Alter(
        call, [](machine::Answer& answer) { answer.returned = 5000; }, kFirst);
    expect("0xd 13");
    faults().Clear();
    volume(0).mount_points = {L"C:\\", L"D:\\" + std::wstring(4100, L'x') + L"\\"};
    expect("0xea 234");
}

TEST_F(Drives, TypesButFixed_AreSkippedTwoOfThemWithALine) {
    const std::pair<UINT, const char*> types[] = {{DRIVE_UNKNOWN, " unknown disk type"},
                                                  {DRIVE_NO_ROOT_DIR, " no root dir on the drive"},
                                                  {DRIVE_REMOVABLE, nullptr},
                                                  {DRIVE_REMOTE, nullptr},
                                                  {DRIVE_CDROM, nullptr},
                                                  {DRIVE_RAMDISK, nullptr}};
    for (const auto& [type, line] : types) {
        simulation().calls().Clear();
        volume(0).drive_type = type;
        drives_.clear();
        log_.Clear();
        EXPECT_TRUE(Get());
        EXPECT_THAT(Volumes(), ElementsAre(kSecond)) << type;
        EXPECT_EQ(simulation().calls().Count("CreateFileW"), 1U);
        std::vector<LogLine> lines;
        if (line != nullptr) {
            lines.push_back({support::kHostWarning, std::string("EnumDisk::GetDrives ") + kFirstText + line});
        }
        EXPECT_EQ(log_.Messages(), lines);
    }
}

TEST_F(Drives, InformationNotReadable_LeavesTheFileSystemEmpty) {
    faults().Fail("GetVolumeInformationW", 1005, L"C:\\");
    EXPECT_TRUE(Get());
    EXPECT_EQ(drives_.at(0).file_system, L"");
    EXPECT_THAT(log_.all(),
                Contains(Trace("EnumDisk::GetVolumeInfo GetVolumeInformation of C:\\ error=0x3ed 1005")));
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(Drives, SearchDoesNotBegin_Fails) {
    faults().Fail("FindFirstVolumeW", 5);
    EXPECT_FALSE(Get());
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("EnumDisk::GetDrives on FindFirstVolumeW failed with error code 5\n")));
    EXPECT_EQ(simulation().calls().Count("FindVolumeClose"), 0U);
}

TEST_F(Drives, SearchBreaksOff_FailsWithTheRowsSoFar) {
    faults().Fail("FindNextVolumeW", 5);
    EXPECT_FALSE(Get());
    EXPECT_THAT(Volumes(), ElementsAre(kFirst));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(Error("EnumDisk::GetDrives FindNextVolumeW failed with error code 5\n")));
    EXPECT_EQ(simulation().calls().Count("FindVolumeClose"), 1U);
}

TEST_F(Drives, SearchThatNeverEnds_Fails) {
    simulation().calls().SetKept(false);
    volume(0).drive_type = DRIVE_CDROM;
    volume(1).drive_type = DRIVE_CDROM;
    faults().Alter("FindNextVolumeW", [](machine::Answer& answer) {
        answer.failed = false;
        answer.error = 0;
    });
    EXPECT_FALSE(Get());
    EXPECT_THAT(drives_, IsEmpty());
}

}  // namespace

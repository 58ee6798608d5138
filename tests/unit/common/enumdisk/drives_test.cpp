// The enumeration of the drives, with one row for each fixed volume.

#include "common/enumdisk/enum_disk.h"
#include "unit/common/enumdisk/enum_machine.h"

namespace {

using enum_machine::kMiB;
using support::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr wchar_t kFirst[] = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\";
constexpr wchar_t kSecond[] = L"\\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\";
constexpr char kFirstText[] = "\\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\";
constexpr char kFirstDevice[] = "\\\\?\\Volume{00000000-0000-0000-0000-000000000001}";

constexpr char kTwoVolumes[] = R"({"disks": [{"index": 0, "size": "1000 MiB", "style": "mbr", "partitions": [
        {"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"},
        {"offset": "101 MiB", "size": "200 MiB", "type": "fat32"}]}],
    "volumes": [
        {"guid": "{00000000-0000-0000-0000-000000000001}", "partition": {"disk": 0, "number": 1},
         "mountPoints": ["C:\\"]},
        {"guid": "{00000000-0000-0000-0000-000000000002}", "partition": {"disk": 0, "number": 2},
         "mountPoints": ["D:\\Folder\\", "E:\\"], "fileSystem": "FAT32"}]})";

class Drives : public enum_machine::EnumMachine {
protected:
    bool Get() { return EnumDisk().GetDrives(drives_); }

    std::vector<std::wstring> Volumes() const {
        std::vector<std::wstring> volumes;
        for (const DriveRow& drive : drives_) {
            volumes.push_back(drive.volume);
        }
        return volumes;
    }

    std::vector<DriveRow> drives_;
};

TEST_F(Drives, FixedVolumes_AreRowsInTheSystemsOrder) {
    Use(kTwoVolumes);
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

// The system reports more characters than the buffer holds.
TEST_F(Drives, MountPathsBeyondTheBuffer_AreNone) {
    Use(kTwoVolumes);
    faults().Alter(
        "GetVolumePathNamesForVolumeNameW", [](machine::Answer& answer) { answer.returned = 5000; }, kFirst);
    EXPECT_TRUE(Get());
    ASSERT_THAT(drives_, SizeIs(2));
    EXPECT_EQ(drives_[0].letter, L"");
    EXPECT_THAT(log_.Messages(), ElementsAre(LogLine{support::kHostWarning,
                                                     std::string("EnumDisk::GetDrives on ") + kFirstText +
                                                         " GetVolumePathNamesForVolumeNameW error=0xd 13"}));
}

TEST_F(Drives, Rows_AreAppendedToWhatIsThere) {
    Use(kTwoVolumes);
    drives_.resize(1);
    EXPECT_TRUE(Get());
    EXPECT_THAT(drives_, SizeIs(3));
}

TEST_F(Drives, FixedVolume_IsTraced) {
    Use(kTwoVolumes);
    Get();
    EXPECT_TRUE(log_.Contains(support::kHostTrace,
                              std::string("EnumDisk::GetDrives volume ") + kFirstText + " is type 3"))
        << log_;
    EXPECT_TRUE(log_.Contains(support::kHostTrace, std::string("GetVolumeExtents: DriveLetter:") +
                                                       kFirstDevice +
                                                       " diskNum=0 offset:1048576 Size:104857600"))
        << log_;
    EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "Entering function EnumDisk::GetVolumeInfo line "))
        << log_;
    EXPECT_THAT(ObjectsOf("GetVolumeInformationW"), ElementsAre(L"C:\\", L"D:\\"));
}

TEST_F(Drives, Workstation_LeavesOutWhatIsNotFixed) {
    UseExample("bios-laptop");
    EXPECT_TRUE(Get());
    ASSERT_THAT(drives_, SizeIs(4));
    EXPECT_EQ(drives_[0].letter, L"");
    EXPECT_EQ(drives_[0].file_system, L"");
    EXPECT_EQ(drives_[1].letter, L"C:");
    EXPECT_EQ(drives_[2].letter, L"D:");
    EXPECT_EQ(drives_[3].letter, L"F:");
    EXPECT_THAT(log_.Messages(), IsEmpty());  // the optical drive is left out silently
    EXPECT_TRUE(log_.ContainsPart(support::kHostTrace, "is type 5")) << log_;
}

TEST_F(Drives, VolumeWithoutLetter_HasNoFileSystemAndItsLine) {
    Use(kTwoVolumes);
    volume(0).mount_points.clear();
    EXPECT_TRUE(Get());
    EXPECT_EQ(drives_.at(0).letter, L"");
    EXPECT_EQ(drives_.at(0).file_system, L"");
    EXPECT_TRUE(log_.Contains(support::kHostTrace,
                              "EnumDisk::GetVolumeInfo GetVolumeInformation 'empty' drive letter passed in"))
        << log_;
    EXPECT_EQ(simulation().calls().Count("GetVolumeInformationW"), 1U);
}

TEST_F(Drives, PathsNotReadable_GoOnWithoutALetter) {
    Use(kTwoVolumes);
    faults().Fail("GetVolumePathNamesForVolumeNameW", 87, kFirst);
    EXPECT_TRUE(Get());
    ASSERT_THAT(drives_, SizeIs(2));
    EXPECT_EQ(drives_[0].letter, L"");
    EXPECT_TRUE(log_.Contains(support::kHostWarning, std::string("EnumDisk::GetDrives on ") + kFirstText +
                                                         " GetVolumePathNamesForVolumeNameW error=0x57 87"))
        << log_;
}

TEST_F(Drives, PathsLongerThanTheBuffer_GoOnWithoutALetter) {
    Use(kTwoVolumes);
    volume(0).mount_points = {L"C:\\", L"D:\\" + std::wstring(4100, L'x') + L"\\"};
    EXPECT_TRUE(Get());
    EXPECT_EQ(drives_.at(0).letter, L"");
    EXPECT_TRUE(log_.Contains(support::kHostWarning, std::string("EnumDisk::GetDrives on ") + kFirstText +
                                                         " GetVolumePathNamesForVolumeNameW error=0xea 234"))
        << log_;
}

TEST_F(Drives, UnknownType_IsSkippedWithItsLine) {
    Use(kTwoVolumes);
    volume(0).drive_type = DRIVE_UNKNOWN;
    EXPECT_TRUE(Get());
    EXPECT_THAT(Volumes(), ElementsAre(kSecond));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(LogLine{support::kHostWarning, std::string("EnumDisk::GetDrives ") + kFirstText +
                                                               " unknown disk type"}));
}

TEST_F(Drives, NoRootDirectory_IsSkippedWithItsLine) {
    Use(kTwoVolumes);
    volume(0).drive_type = DRIVE_NO_ROOT_DIR;
    EXPECT_TRUE(Get());
    EXPECT_THAT(Volumes(), ElementsAre(kSecond));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(LogLine{support::kHostWarning, std::string("EnumDisk::GetDrives ") + kFirstText +
                                                               " no root dir on the drive"}));
}

TEST_F(Drives, OtherTypes_AreSkippedWithoutALine) {
    for (const UINT type : {DRIVE_REMOVABLE, DRIVE_REMOTE, DRIVE_CDROM, DRIVE_RAMDISK}) {
        Use(kTwoVolumes);
        volume(0).drive_type = type;
        drives_.clear();
        EXPECT_TRUE(Get());
        EXPECT_THAT(Volumes(), ElementsAre(kSecond)) << type;
        EXPECT_EQ(simulation().calls().Count("CreateFileW"), 1U);
    }
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(Drives, InformationNotReadable_LeavesTheFileSystemEmpty) {
    Use(kTwoVolumes);
    faults().Fail("GetVolumeInformationW", 1005, L"C:\\");
    EXPECT_TRUE(Get());
    EXPECT_EQ(drives_.at(0).file_system, L"");
    EXPECT_TRUE(log_.Contains(support::kHostTrace,
                              "EnumDisk::GetVolumeInfo GetVolumeInformation of C:\\ error=0x3ed 1005"))
        << log_;
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(Drives, SearchDoesNotBegin_Fails) {
    Use(kTwoVolumes);
    faults().Fail("FindFirstVolumeW", 5);
    EXPECT_FALSE(Get());
    EXPECT_THAT(drives_, IsEmpty());
    EXPECT_THAT(log_.Messages(),
                ElementsAre(LogLine{support::kHostError,
                                    "EnumDisk::GetDrives on FindFirstVolumeW failed with error code 5\n"}));
    EXPECT_EQ(simulation().calls().Count("FindVolumeClose"), 0U);
}

TEST_F(Drives, SearchBreaksOff_FailsWithTheRowsSoFar) {
    Use(kTwoVolumes);
    faults().Fail("FindNextVolumeW", 5);
    EXPECT_FALSE(Get());
    EXPECT_THAT(Volumes(), ElementsAre(kFirst));
    EXPECT_THAT(log_.Messages(),
                ElementsAre(LogLine{support::kHostError,
                                    "EnumDisk::GetDrives FindNextVolumeW failed with error code 5\n"}));
    EXPECT_EQ(simulation().calls().Count("FindVolumeClose"), 1U);
}

TEST_F(Drives, SearchThatNeverEnds_Fails) {
    Use(kTwoVolumes);
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

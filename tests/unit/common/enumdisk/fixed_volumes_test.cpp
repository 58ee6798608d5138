// The enumeration of the fixed volumes, and the queries of each.

#include "common/enumdisk/fixed_volumes.h"

#include "unit/common/enumdisk/enum_machine.h"
#include "unit/common/enumdisk/fixed_machine.h"

namespace {

using enum_machine::kMiB;
using support::Error;
using support::Trace;
using support::Warning;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using FixedVolumes = fixed_machine::FixedMachine;

TEST_F(FixedVolumes, OtherThanFixed_AreSkipped) {
    for (const UINT type : {DRIVE_NO_ROOT_DIR, DRIVE_REMOVABLE, DRIVE_REMOTE, DRIVE_CDROM, DRIVE_RAMDISK}) {
        volume(0).drive_type = type;
        ASSERT_TRUE(Get());
        EXPECT_THAT(Names(), ElementsAre(fixed_machine::kSecond)) << type;
    }
    EXPECT_THAT(log_.Messages(), IsEmpty());
}

TEST_F(FixedVolumes, TypeUnknown_IsSkippedWithItsLine) {
    volume(0).drive_type = DRIVE_UNKNOWN;
    ASSERT_TRUE(Get());
    EXPECT_THAT(Names(), ElementsAre(fixed_machine::kSecond));
    EXPECT_THAT(log_.all(), Contains(Error("getFixedVolumes failed to get drive type of " + FirstName())));
}

TEST_F(FixedVolumes, NumbersOfTheSystem_AreReplacedByTheOrderOfOffsets) {
    volume(0).partition->number = 2;
    volume(1).partition->number = 1;
    ASSERT_TRUE(Get());
    EXPECT_EQ(volumes_.at(0).m_PartitionNumber, 1);
    EXPECT_EQ(volumes_.at(0).extents.at(0).m_PartitionNumber, 1);
    EXPECT_EQ(volumes_.at(1).m_PartitionNumber, 2);
    EXPECT_THAT(
        log_.all(),
        Contains(Trace("DTS 19154 possible? assignPartitionNumbers 1 changing partition number from 2 to 1 "
                       "for volume " +
                       FirstName())));
}

TEST_F(FixedVolumes, SearchDoesNotBegin_Fails) {
    faults().Fail("FindFirstVolumeW", 5);
    EXPECT_FALSE(Get());
    EXPECT_THAT(log_.all(), Contains(Error("getFixedVolumes: FindFirstVolume failed error=0x5 5")));
}

TEST_F(FixedVolumes, SearchBreaksOff_IsLoggedAndTheVolumesSoFarAreFinished) {
    faults().Fail("FindNextVolumeW", 5);
    EXPECT_TRUE(Get());
    EXPECT_THAT(Names(), ElementsAre(fixed_machine::kFirst));
    EXPECT_EQ(volumes_.at(0).m_dwDiskSignature, 439041101U);
    EXPECT_THAT(log_.all(), Contains(Error("getFixedVolumes: FindNextVolume failed error=0x5 5")));
    EXPECT_EQ(simulation().calls().Count("FindVolumeClose"), 1U);
}

TEST_F(FixedVolumes, SearchThatNeverEnds_IsGivenUp) {
    simulation().calls().SetKept(false);
    volume(0).drive_type = DRIVE_CDROM;
    volume(1).drive_type = DRIVE_CDROM;
    faults().Alter("FindNextVolumeW", [](machine::Answer& answer) {
        answer.failed = false;
        answer.error = 0;
    });
    EXPECT_TRUE(Get());
    EXPECT_THAT(volumes_, IsEmpty());
    EXPECT_TRUE(log_.ContainsPart(support::kHostError, "getFixedVolumes: FindNextVolume failed error="))
        << log_;
}

TEST_F(FixedVolumes, DriveName_IsTheFirstLetterOfTheVolume) {
    volume(0).mount_points = {L"X:\\", L"G:\\"};
    ASSERT_TRUE(Get());
    EXPECT_THAT(OpenedVolumes(), ElementsAre(L"\\\\.\\G:", fixed_machine::kSecondDevice));
    EXPECT_EQ(volumes_.at(0).VolumeLetter, L"G:\\");
}

TEST_F(FixedVolumes, WithoutLetter_IsOpenedByItsNameWithoutTheBackslash) {
    ASSERT_TRUE(Get());
    EXPECT_THAT(OpenedVolumes(), ElementsAre(L"\\\\.\\C:", fixed_machine::kSecondDevice));
    EXPECT_EQ(volumes_.at(1).VolumeLetter, L"");
}

TEST_F(FixedVolumes, DrivesNotReadable_IsLoggedAndTheVolumeOpenedByItsName) {
    faults().Fail("GetLogicalDrives", 8);
    ASSERT_TRUE(Get());
    EXPECT_THAT(OpenedVolumes(), ElementsAre(fixed_machine::kFirstDevice, fixed_machine::kSecondDevice));
    EXPECT_THAT(log_.all(),
                Contains(Error("getDriveNameForVolumeName GetLogicalDrives returned error 0x8 8")));
}

TEST_F(FixedVolumes, LetterWithoutVolume_IsLoggedAndTheNextOneTried) {
    volume(0).mount_points = {L"C:\\", L"D:\\"};
    faults().Fail("GetVolumeNameForVolumeMountPointW", 21, L"C:\\");
    ASSERT_TRUE(Get());
    EXPECT_EQ(OpenedVolumes().at(0), L"\\\\.\\D:");
    EXPECT_THAT(
        log_.all(),
        Contains(Warning("getDriveNameForVolumeName GetVolumeNameForVolumeMountPoint for C:\\ returned error "
                         "0x15 21")));
}

TEST_F(FixedVolumes, SpannedVolume_HasAllItsExtents) {
    UseExample("spanned-dynamic");
    // The partition query of a dynamic volume is answered by the partition with its first extent.
    volume(2).partition = disk(1).partitions.front();
    ASSERT_TRUE(Get());
    const auto found = std::find_if(volumes_.begin(), volumes_.end(),
                                    [](const ::Volume& candidate) { return candidate.Label == L"Archive"; });
    ASSERT_NE(found, volumes_.end()) << log_;
    ASSERT_THAT(found->extents, SizeIs(2));
    EXPECT_EQ(found->m_DiskNumber, 1U);
    EXPECT_EQ(found->extents[1].m_DiskNumber, 2U);
    EXPECT_EQ(found->extents[1].m_Size, 200000ULL * kMiB);
    EXPECT_EQ(found->m_dwDiskSignature, 0x5C82F0A4U);
    EXPECT_EQ(found->extents[0].m_dwDiskSignature, 0x5C82F0A4U);
    EXPECT_EQ(found->extents[1].m_dwDiskSignature, 0x5C82F0A5U);
    EXPECT_TRUE(found->Dynamic);
    EXPECT_EQ(found->VolumeLetter, L"S:\\");
}

}  // namespace

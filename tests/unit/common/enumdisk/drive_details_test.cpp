// The details that volumes receive from their disks: signature, identifier, dynamic or not.

#include "common/enumdisk/fixed_volumes.h"
#include "unit/common/enumdisk/enum_machine.h"
#include "unit/common/enumdisk/layout_bytes.h"

namespace {

constexpr GUID kDiskId = {0x89ABCDEF, 0x1234, 0x5678, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID kBasicData = {0xEBD0A0A2, 0xB9E5, 0x4433, {0x87, 0xC0, 0x68, 0xB6, 0xB7, 0x26, 0x99, 0xC7}};
constexpr GUID kLdmMetadata = {0x5808C8AA, 0x7E8F, 0x42E0, {0x85, 0xD2, 0xE1, 0xE9, 0x04, 0x34, 0xCF, 0xB3}};
constexpr GUID kLdmData = {0xAF9B60A0, 0x1431, 0x4F62, {0xBC, 0x68, 0x33, 0x11, 0x71, 0x4A, 0x69, 0xAD}};

::Volume VolumeOn(std::uint32_t disk, const std::vector<std::uint32_t>& extent_disks) {
    ::Volume volume;
    volume.m_DiskNumber = disk;
    volume.m_dwDiskSignature = 77;
    for (const std::uint32_t number : extent_disks) {
        DiskExtent extent;
        extent.m_DiskNumber = number;
        extent.m_dwDiskSignature = 77;
        volume.extents.push_back(extent);
    }
    return volume;
}

class DriveDetails : public enum_machine::EnumMachine {
protected:
    // Makes disk 0 a GPT disk between being listed and being read.
    void TurnIntoGpt(const std::vector<GUID>& types) {
        Use(enum_machine::kTwoMbr);
        faults().Add(
            {enum_machine::kLayoutEx, enum_machine::kDrive0, 2, false, {}, [types](machine::Answer& answer) {
                 answer.bytes = layout_bytes::Gpt(kDiskId, types);
                 answer.returned = answer.bytes.size();
             }});
    }

    std::vector<::Volume> volumes_ = {VolumeOn(0, {0})};
};

TEST_F(DriveDetails, DynamicVolume_IsNeverReset) {
    Use(enum_machine::kTwoMbr);
    volumes_[0].Dynamic = true;
    assignDriveDetails(volumes_);
    EXPECT_TRUE(volumes_[0].Dynamic);
}

TEST_F(DriveDetails, GptDisk_GivesTheBeginningOfItsIdentifier) {
    TurnIntoGpt({kBasicData});
    assignDriveDetails(volumes_);
    EXPECT_EQ(volumes_[0].m_dwDiskSignature, 0x89ABCDEFU);
    EXPECT_EQ(volumes_[0].disk_guid, kDiskId);
    EXPECT_EQ(volumes_[0].extents[0].m_dwDiskSignature, 0x89ABCDEFU);
    EXPECT_EQ(volumes_[0].extents[0].disk_guid, kDiskId);
    EXPECT_FALSE(volumes_[0].Dynamic);
}

TEST_F(DriveDetails, GptDiskWithEitherLdmType_IsDynamic) {
    for (const GUID& type : {kLdmMetadata, kLdmData}) {
        TurnIntoGpt({kBasicData, type});
        volumes_ = {VolumeOn(0, {0})};
        assignDriveDetails(volumes_);
        EXPECT_TRUE(volumes_[0].Dynamic);
    }
}

TEST_F(DriveDetails, GptDiskWithoutPartitions_IsNotDynamic) {
    TurnIntoGpt({});
    assignDriveDetails(volumes_);
    EXPECT_EQ(volumes_[0].m_dwDiskSignature, 0x89ABCDEFU);
    EXPECT_FALSE(volumes_[0].Dynamic);
}

// Details of an unknown disk are zero, with an error line for the volume and for each of its extents on it.
class UnknownDisk : public DriveDetails {
protected:
    void ExpectUnknown(std::uint32_t number) {
        volumes_ = {VolumeOn(number, {number, number}), VolumeOn(number, {number})};
        log_.Clear();
        assignDriveDetails(volumes_);
        const std::string text = std::to_string(number);
        EXPECT_EQ(log_.Count(support::kHostError,
                             "assignDriveDetails no physical disk matching volume disk num " + text),
                  2U)
            << log_;
        EXPECT_EQ(log_.Count(support::kHostError,
                             "assignDriveDetails no physical disk matching volume extent disk num " + text),
                  3U)
            << log_;
        EXPECT_EQ(volumes_[0].m_dwDiskSignature, 0U);
        EXPECT_EQ(volumes_[0].extents[1].m_dwDiskSignature, 0U);
        EXPECT_FALSE(volumes_[0].Dynamic);
    }
};

TEST_F(UnknownDisk, NumberWithoutDisk_IsZeros) {
    Use(enum_machine::kTwoMbr);
    ExpectUnknown(7);
}

TEST_F(UnknownDisk, GptDisk_IsZerosForItIsNotUsable) {
    Use(enum_machine::kMbrAndGpt);
    ExpectUnknown(1);
}

TEST_F(UnknownDisk, LayoutNotReadableTheSecondTime_IsZeros) {
    Use(enum_machine::kTwoMbr);
    faults().Add({enum_machine::kLayoutEx, enum_machine::kDrive0, 2, false, {21, 0, 0}, {}});
    ExpectUnknown(0);
}

TEST_F(UnknownDisk, DynamicVolume_StaysDynamic) {
    Use(enum_machine::kTwoMbr);
    volumes_ = {VolumeOn(7, {})};
    volumes_[0].Dynamic = true;
    assignDriveDetails(volumes_);
    EXPECT_TRUE(volumes_[0].Dynamic);
}

TEST_F(DriveDetails, ListingFails_LeavesTheVolumesAlone) {
    Use(enum_machine::kTwoMbr);
    faults().Fail(enum_machine::kLayoutEx, 5);
    assignDriveDetails(volumes_);
    EXPECT_EQ(volumes_[0].m_dwDiskSignature, 77U);
    EXPECT_EQ(volumes_[0].extents[0].m_dwDiskSignature, 77U);
    EXPECT_FALSE(log_.ContainsPart(support::kHostError, "no physical disk matching")) << log_;
}

}  // namespace

// Compares the records of the example machines with their descriptions.

#include "capture/grabber/info_grabber_v2.h"
#include "machine/description/text.h"
#include "support/logger_capture.h"
#include "support/text.h"
#include "support/xml_tree.h"
#include "unit/capture/grabber/example_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace {

using testing::ElementsAre;

constexpr std::uint8_t kLdm = 0x42;

const machine::Disk* DescribedDisk(const machine::Description& description, std::uint32_t index) {
    const auto found = std::find_if(description.disks.begin(), description.disks.end(),
                                    [&](const machine::Disk& disk) { return disk.index == index; });
    return found == description.disks.end() ? nullptr : &*found;
}

bool IsDynamic(const machine::Disk& disk) {
    return std::any_of(disk.partitions.begin(), disk.partitions.end(),
                       [](const machine::Partition& partition) { return partition.mbr_type == kLdm; });
}

// The described partitions in disk order.
std::vector<machine::Partition> PartitionsOf(const machine::Disk& disk) {
    std::vector<machine::Partition> partitions;
    for (const machine::Partition& partition : disk.partitions) {
        if (partition.number != 0) {
            partitions.push_back(partition);
        }
    }
    std::sort(partitions.begin(), partitions.end(),
              [](const auto& left, const auto& right) { return left.offset < right.offset; });
    return partitions;
}

std::wstring LetterOf(const machine::Volume& volume) {
    std::wstring smallest;
    for (const std::wstring& path : volume.mount_points) {
        if (path.size() == 3 && (smallest.empty() || path < smallest)) {
            smallest = path;
        }
    }
    return smallest;
}

class InfoGrabberV2Machine : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { ASSERT_TRUE(grabber_.ObtainInformation()) << log_; }

    const machine::Description& described() { return session_.simulation().machine(); }
    const EnvInfo& record() { return *grabber_.GetEnvInfo(); }

    machine::Session session_{ExampleMachine(GetParam())};
    support::LoggerCapture log_;
    orvane::InfoGrabberV2 grabber_;
};

TEST_P(InfoGrabberV2Machine, Disks_HaveARowForEveryNumberUpToTheLargest) {
    std::uint32_t largest = 0;
    for (const machine::Disk& disk : described().disks) {
        largest = std::max(largest, disk.index);
    }
    ASSERT_EQ(record().DiskDrives.size(), largest + 1U);
    for (std::uint32_t number = 0; number <= largest; ++number) {
        SCOPED_TRACE(number);
        const DiskRow& row = record().DiskDrives[number];
        const machine::Disk* const disk = DescribedDisk(described(), number);
        EXPECT_EQ(row.disk_number, number);
        if (disk == nullptr) {
            EXPECT_EQ(row.size, 500U);
            EXPECT_THAT(FactsOf(row),
                        ElementsAre(RowFacts{L"Unallocated", L"Unallocated", 0, 500, 0, L"", L""}));
            continue;
        }
        EXPECT_EQ(row.size, disk->size);
        EXPECT_EQ(row.bytes_per_sector, disk->bytes_per_sector);
        EXPECT_EQ(static_cast<std::uint32_t>(row.partition_style), disk->style);
        EXPECT_TRUE(IsEqualGUID(row.disk_guid, disk->style == PARTITION_STYLE_GPT ? disk->disk_id : GUID{}));
    }
}

TEST_P(InfoGrabberV2Machine, Partitions_AreThoseDescribedNumberedInDiskOrder) {
    for (const machine::Disk& disk : described().disks) {
        SCOPED_TRACE(disk.index);
        std::vector<PartitionRow> rows = record().DiskDrives.at(disk.index).partitions;
        std::erase_if(rows, [](const PartitionRow& row) { return row.operation != L"Existing"; });
        const std::vector<machine::Partition> partitions = PartitionsOf(disk);
        ASSERT_EQ(rows.size(), partitions.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(static_cast<std::uint64_t>(rows[i].offset), partitions[i].offset);
            EXPECT_EQ(static_cast<std::uint64_t>(rows[i].length), partitions[i].length);
            EXPECT_EQ(rows[i].partition_number, static_cast<std::int32_t>(i) + 1);
            EXPECT_EQ(rows[i].mbr_type, partitions[i].mbr_type);
            EXPECT_TRUE(IsEqualGUID(rows[i].gpt_type, partitions[i].gpt_type));
            EXPECT_TRUE(IsEqualGUID(rows[i].gpt_id, partitions[i].gpt_id));
            EXPECT_EQ(static_cast<std::uint32_t>(rows[i].partition_style), disk.style);
            if (disk.style == PARTITION_STYLE_MBR) {
                EXPECT_EQ(rows[i].active, partitions[i].active);
            }
        }
    }
}

TEST_P(InfoGrabberV2Machine, Rows_CoverTheDiskWithoutHoles) {
    for (const machine::Disk& disk : described().disks) {
        SCOPED_TRACE(disk.index);
        const std::vector<PartitionRow>& rows = record().DiskDrives.at(disk.index).partitions;
        ASSERT_FALSE(rows.empty());
        std::int64_t end = std::min<std::int64_t>(rows.front().offset, static_cast<std::int64_t>(MiB(1)));
        for (const PartitionRow& row : rows) {
            EXPECT_EQ(row.offset, end);
            EXPECT_EQ(row.length_copy, row.length);
            end = row.offset + row.length;
            if (row.operation != L"Existing") {
                EXPECT_EQ(row.partition_number, -1);
                EXPECT_EQ(row.operation, row.kind);
                EXPECT_EQ(row.drive, L"");
            }
        }
        EXPECT_EQ(static_cast<std::uint64_t>(end), disk.size);
    }
}

TEST_P(InfoGrabberV2Machine, Interfaces_AreThoseOfTheManagementInformation) {
    for (const machine::Disk& disk : described().disks) {
        std::wstring expected = L"SCSI";  // the default of a description
        for (const machine::WmiProperty& property : disk.wmi) {
            if (property.name == L"InterfaceType") {
                expected = property.value.text;
            }
        }
        EXPECT_EQ(record().DiskDrives.at(disk.index).interface_type, expected) << disk.index;
    }
}

TEST_P(InfoGrabberV2Machine, Volumes_AreTheFixedOnesAsDescribed) {
    std::size_t fixed = 0;
    for (const machine::Volume& volume : described().volumes) {
        if (volume.drive_type != DRIVE_FIXED) {
            EXPECT_THROW(VolumeOn(record(), volume.device), std::out_of_range);
            continue;
        }
        ++fixed;
        SCOPED_TRACE(support::Utf8(volume.device));
        const ::Volume& row = VolumeOn(record(), volume.device);
        EXPECT_EQ(row.Name, volume.guid.empty() ? L"" : L"\\\\?\\Volume" + volume.guid + L"\\");
        EXPECT_EQ(row.VolumeLetter, LetterOf(volume));
        EXPECT_EQ(row.Label, volume.label);
        EXPECT_EQ(row.FileSystem, volume.file_system);
        EXPECT_EQ(row.m_Size, volume.length);
        if (volume.file_system.empty()) {
            continue;  // the query for the file system failed
        }
        EXPECT_EQ(row.Serial, volume.serial);
        EXPECT_EQ(row.Flags, volume.file_system_flags);
        EXPECT_EQ(row.m_FileSystemUsedSpace, volume.total_bytes - volume.free_bytes);
        EXPECT_EQ(row.BlockSize, volume.sectors_per_cluster * volume.bytes_per_sector);
    }
    EXPECT_EQ(record().VolumeTable.size(), fixed);
}

TEST_P(InfoGrabberV2Machine, Extents_AreThoseDescribedWithTheirDisksIdentity) {
    const auto compare = [&](const DiskExtent& row, const machine::Extent& extent) {
        const machine::Disk& disk = *DescribedDisk(described(), extent.disk);
        const bool gpt = disk.style == PARTITION_STYLE_GPT;
        EXPECT_EQ(row.m_DiskNumber, extent.disk);
        EXPECT_EQ(row.m_offsetPartition, extent.offset);
        EXPECT_EQ(row.m_dwDiskSignature, gpt ? 0U : disk.signature);
        EXPECT_TRUE(IsEqualGUID(row.disk_guid, gpt ? disk.disk_id : GUID{}));
    };
    for (const machine::Volume& volume : described().volumes) {
        if (volume.drive_type != DRIVE_FIXED) {
            continue;
        }
        SCOPED_TRACE(support::Utf8(volume.device));
        const ::Volume& row = VolumeOn(record(), volume.device);
        ASSERT_EQ(row.extents.size(), volume.extents->size());
        compare(row, volume.extents->front());
        for (std::size_t i = 0; i < row.extents.size(); ++i) {
            compare(row.extents[i], (*volume.extents)[i]);
            EXPECT_EQ(row.extents[i].m_Size, (*volume.extents)[i].length);
            EXPECT_EQ(row.extents[i].m_GUID, row.m_GUID);
            EXPECT_EQ(row.extents[i].m_FileSystemUsedSpace, 0U);
        }
    }
}

TEST_P(InfoGrabberV2Machine, BasicVolumes_HaveTheNumberAndGiveTheLetterOfTheirPartition) {
    for (const ::Volume& volume : record().VolumeTable) {
        SCOPED_TRACE(support::Utf8(volume.DeviceName));
        const machine::Disk& disk = *DescribedDisk(described(), volume.m_DiskNumber);
        EXPECT_EQ(volume.Dynamic, volume.extents.size() > 1 || IsDynamic(disk));
        if (volume.Dynamic) {
            continue;
        }
        const std::vector<PartitionRow>& rows = record().DiskDrives.at(disk.index).partitions;
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const PartitionRow& candidate) {
            return static_cast<std::uint64_t>(candidate.offset) == volume.m_offsetPartition;
        });
        ASSERT_NE(row, rows.end());
        EXPECT_EQ(volume.m_PartitionNumber, row->partition_number);
        EXPECT_GT(volume.m_PartitionNumber, 0);
        EXPECT_EQ(row->drive, volume.VolumeLetter);
        EXPECT_EQ(row->file_system, volume.FileSystem);
    }
}

TEST_P(InfoGrabberV2Machine, Guids_AreFreshAndUsedThroughout) {
    const std::wregex form(L"\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}");
    std::set<std::wstring> guids;
    ASSERT_EQ(record().DriveLetterTable.size(), record().VolumeTable.size());
    for (std::size_t i = 0; i < record().VolumeTable.size(); ++i) {
        const ::Volume& volume = record().VolumeTable[i];
        EXPECT_TRUE(std::regex_match(volume.m_GUID, form));
        EXPECT_EQ(volume.Name.find(volume.m_GUID), std::wstring::npos);
        guids.insert(volume.m_GUID);
        EXPECT_EQ(record().DriveLetterTable[i].m_guidVolume, volume.m_GUID);
        EXPECT_EQ(record().DriveLetterTable[i].m_strDrive, volume.VolumeLetter);
        EXPECT_EQ(volume.SystemVolume, volume.DeviceName == record().OS.SystemDevice);
        EXPECT_EQ(volume.BootVolume, volume.DeviceName == record().OS.BootDevice);
    }
    EXPECT_EQ(guids.size(), record().VolumeTable.size());
    EXPECT_EQ(record().BootConfig.m_guidSystemVolume, VolumeOn(record(), record().OS.SystemDevice).m_GUID);
    EXPECT_EQ(record().BootConfig.m_guidBootVolume, VolumeOn(record(), record().OS.BootDevice).m_GUID);
}

TEST_P(InfoGrabberV2Machine, Volumes_AreSortedByLetter) {
    EXPECT_TRUE(std::is_sorted(
        record().VolumeTable.begin(), record().VolumeTable.end(),
        [](const ::Volume& left, const ::Volume& right) { return left.VolumeLetter < right.VolumeLetter; }));
}

TEST_P(InfoGrabberV2Machine, Document_CountsWhatTheMachineHas) {
    const XmlTree root = XmlTree::Of(DocumentOf(grabber_));
    const XmlTree& document = root.Child("BMREnvInfo");
    EXPECT_EQ(document.Child("Version").text, "5");
    EXPECT_EQ(document.Child("DllVersion").text, "9.50.6732.");
    EXPECT_EQ(document.Child("DiskDrives").Child("size_idx").text,
              std::to_string(record().DiskDrives.size()));
    EXPECT_EQ(document.Child("VolumeTable").Child("TotalVolumes").text,
              std::to_string(record().VolumeTable.size()));
    EXPECT_EQ(document.Child("BootConfig").Child("m_strBootOptions").text, " NOEXECUTE=OPTIN");
    EXPECT_EQ(document.Child("BootIniContents").text, "");
    EXPECT_EQ(session_.simulation().open_handles(), 0U);
    EXPECT_EQ(session_.simulation().live_objects(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Examples, InfoGrabberV2Machine,
                         testing::Values("uefi-workstation", "bios-laptop", "server-many-disks",
                                         "spanned-dynamic", "large-4kn"));

}  // namespace

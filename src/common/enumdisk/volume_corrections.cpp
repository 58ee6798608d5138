// Corrections to the fixed volumes after their enumeration: partition numbers in disk order, and data of
// their disks.

#include "common/enumdisk/enum_disk.h"
#include "common/enumdisk/fixed_volumes.h"
#include "common/logger/trace.h"
#include "common/record/dynamic_types.h"

#include <algorithm>
#include <map>
#include <optional>

namespace {

using OffsetsOfDisks = std::map<std::uint32_t, std::vector<std::uint64_t>>;

struct DriveInfo {
    std::uint32_t signature = 0;
    std::uint32_t flags = 0;
    GUID disk_guid{};
};

constexpr std::uint32_t kDynamicFlag = 1;
constexpr std::uint32_t kEmptyGptFlag = 2;

OffsetsOfDisks CollectOffsets(const std::vector<::Volume>& volumes) {
    OffsetsOfDisks offsets;
    for (const ::Volume& volume : volumes) {
        offsets[volume.m_DiskNumber].push_back(volume.m_offsetPartition);
        // Skips the first extent: its offset is the volume's own, added above.
        for (std::size_t i = 1; i < volume.extents.size(); ++i) {
            offsets[volume.extents[i].m_DiskNumber].push_back(volume.extents[i].m_offsetPartition);
        }
    }
    for (auto& [disk, list] : offsets) {
        std::sort(list.begin(), list.end());
    }
    return offsets;
}

// Sets the partition number to the position, from 1, of the extent's offset among the offsets on its disk. If
// an offset repeats, its last position is used: compatibility C110
void Renumber(const OffsetsOfDisks& offsets, const wchar_t* message, const std::wstring& volume_name,
              DiskExtent& extent) {
    const auto disk = offsets.find(extent.m_DiskNumber);
    if (disk == offsets.end()) {
        return;
    }
    const std::vector<std::uint64_t>& list = disk->second;
    const auto past = std::upper_bound(list.begin(), list.end(), extent.m_offsetPartition);
    if (past == list.begin() || *(past - 1) != extent.m_offsetPartition) {
        return;
    }
    const auto number = static_cast<std::int32_t>(past - list.begin());
    if (number != extent.m_PartitionNumber) {
        GetLogger().Write(kLogTrace, message, extent.m_PartitionNumber, number, volume_name.c_str());
        extent.m_PartitionNumber = number;
    }
}

DriveInfo DescribeGpt(const DRIVE_LAYOUT_INFORMATION_EX& layout) {
    DriveInfo info;
    // The first 32 bits of the disk's GUID: compatibility C115
    info.signature = layout.Gpt.DiskId.Data1;
    info.disk_guid = layout.Gpt.DiskId;
    if (layout.PartitionCount == 0) {
        info.flags |= kEmptyGptFlag;
    }
    const auto partitions = win::PartitionsIn(layout);
    const bool dynamic =
        std::any_of(partitions.begin(), partitions.end(), [](const PARTITION_INFORMATION_EX& partition) {
            // The LDM metadata partition alone is enough: compatibility C147
            return IsEqualGUID(partition.Gpt.PartitionType, kLdmMetadataPartition) ||
                   IsEqualGUID(partition.Gpt.PartitionType, kLdmDataPartition);
        });
    info.flags |= dynamic ? kDynamicFlag : 0;
    return info;
}

DriveInfo DescribeMbr(const DRIVE_LAYOUT_INFORMATION_EX& layout) {
    DriveInfo info;
    info.signature = layout.Mbr.Signature;
    const auto partitions = win::PartitionsIn(layout);
    const bool dynamic = std::any_of(
        partitions.begin(), partitions.end(),
        [](const PARTITION_INFORMATION_EX& partition) { return partition.Mbr.PartitionType == kLdmMbrType; });
    info.flags |= dynamic ? kDynamicFlag : 0;
    return info;
}

std::optional<DriveInfo> getDriveInfo(std::uint32_t disk_number) {
    return Traced(L"getDriveInfo", [&]() -> std::optional<DriveInfo> {
        win::ByteBuffer buffer;
        DWORD error = ERROR_SUCCESS;
        if (!EnumDisk::GetDriveLayout(disk_number, true, buffer, error)) {
            return {};
        }
        const DRIVE_LAYOUT_INFORMATION_EX& layout = win::LayoutExIn(buffer);
        switch (layout.PartitionStyle) {
            case PARTITION_STYLE_GPT:
                return DescribeGpt(layout);
            case PARTITION_STYLE_MBR:
                return DescribeMbr(layout);
            default:
                return {};
        }
    });
}

using DriveInfos = std::map<std::uint32_t, DriveInfo>;

// Copies the signature and the GUID of the extent's disk to the extent. If the disk is unknown, logs an error
// and copies zeros.
DriveInfo ApplyDriveInfo(const DriveInfos& disks, const wchar_t* message, DiskExtent& extent) {
    const auto found = disks.find(extent.m_DiskNumber);
    if (found == disks.end()) {
        GetLogger().Write(kLogError, message, extent.m_DiskNumber);
    }
    const DriveInfo info = found == disks.end() ? DriveInfo() : found->second;
    extent.m_dwDiskSignature = info.signature;
    extent.disk_guid = info.disk_guid;
    return info;
}

}  // namespace

// The log lines contain the number of an old fault report: compatibility C16
void assignPartitionNumbers(std::vector<::Volume>& volumes) {
    const OffsetsOfDisks offsets = CollectOffsets(volumes);
    for (::Volume& volume : volumes) {
        Renumber(offsets,
                 L"DTS 19154 possible? assignPartitionNumbers 1 changing partition number from %d to %d for "
                 L"volume %s",
                 volume.Name, volume);
    }
    for (::Volume& volume : volumes) {
        for (DiskExtent& extent : volume.extents) {
            Renumber(offsets,
                     L"DTS 19154 possible? assignPartitionNumbers 2 changing partition number from %d to %d "
                     L"for volume %s",
                     volume.Name, extent);
        }
    }
}

void assignDriveDetails(std::vector<::Volume>& volumes) {
    Traced(L"assignDriveDetails", [&] {
        std::vector<std::uint32_t> indexes;
        std::int32_t maximum = -1;
        if (!EnumDisk::GetPhysicalDrivesIndexes(indexes, maximum)) {
            return;
        }
        DriveInfos disks;
        for (const std::uint32_t index : indexes) {
            if (const std::optional<DriveInfo> info = getDriveInfo(index)) {
                disks.emplace(index, *info);
            }
        }
        for (::Volume& volume : volumes) {
            const DriveInfo info = ApplyDriveInfo(
                disks, L"assignDriveDetails no physical disk matching volume disk num %d", volume);
            if ((info.flags & kDynamicFlag) != 0) {
                volume.Dynamic = true;
            }
        }
        for (::Volume& volume : volumes) {
            for (DiskExtent& extent : volume.extents) {
                ApplyDriveInfo(
                    disks, L"assignDriveDetails no physical disk matching volume extent disk num %d", extent);
            }
        }
    });
}

#include "capture/grabber/disk_rows.h"

#include "common/logger/trace.h"
#include "common/record/find_rows.h"
#include "common/record/partition_rows.h"
#include "common/text/byte_range.h"

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

// The position of a volume's extent relative to a partition row.
enum class Position { kInside, kPartial, kOutside };

Position PositionIn(const PartitionRow& row, const VolumeOnDisk& volume) {
    const std::int64_t ps = row.offset;
    const std::int64_t pe = EndOf(ps, row.length);
    const std::int64_t es = volume.offset;
    const std::int64_t ee = EndOf(es, volume.length);
    if ((ps == es && pe == ee) || (ps <= es && ee <= pe && es < pe)) {
        return Position::kInside;
    }
    const bool same_end = pe == ee && row.length != 0 && volume.length != 0;
    return ps == es || same_end || (es < pe && ps < ee) ? Position::kPartial : Position::kOutside;
}

}  // namespace

// The log lines name the device manager: compatibility C11
bool GetMaxPhysicalDiskId(const bmr_common::DeviceManager& device_manager, std::uint32_t& maximum) {
    bool found = false;
    maximum = 0;
    for (const auto& [index, disk] : device_manager.disks()) {
        if (!disk) {
            GetLogger().Write(kLogError,
                              L"DeviceManager::GetMaxPhysicalDiskId - NULL device found with id %s",
                              index.c_str());
            continue;
        }
        const auto number = boost::lexical_cast<std::uint32_t>(index);
        if (std::cmp_greater(number, kHighestDiskNumber)) {
            GetLogger().Write(kLogWarning,
                              L"DeviceManager::GetMaxPhysicalDiskId disk number %u is too large - ignoring",
                              number);
            continue;
        }
        maximum = std::max(maximum, number);
        found = true;
    }
    if (!found) {
        GetLogger().Write(kLogError, L"DeviceManager::GetMaxPhysicalDiskId no devices so no maximum id");
    }
    return found;
}

bool AddExistingDiskInformation(const bmr_common::DiskDriveManager& disk, DiskRow& row) {
    constexpr const wchar_t* kFunction = L"orvane::InfoGrabberV2::AddExistingDiskInformation";
    return Traced(kFunction, [&] {
        const std::uint32_t style = disk.GetPartitionStyle();
        row.disk_number = disk.disk_index();
        row.size = static_cast<std::uint64_t>(disk.geometry().disk_size());
        row.bytes_per_sector = disk.geometry().geometry().BytesPerSector;
        row.partition_style = static_cast<std::int32_t>(style);
        if (style == bmr_common::kStyleGPT) {
            row.disk_guid = disk.geometry().disk_id();
        }
        if (style == bmr_common::kStyleRAW || disk.GetPartitionLayoutExPtr() == nullptr ||
            disk.GetPartitionCount() == 0) {
            MakeWholeDiskRow(row);
            return true;
        }
        if (disk.FillDiskRow(row)) {
            return true;
        }
        // The function name is passed in place of the style: compatibility C23
        GetLogger().Write(kLogError, L"unsupported partition style %d", kFunction, style);
        return false;
    });
}

void FinishDiskRows(std::vector<DiskRow>& disks) {
    for (DiskRow& disk : disks) {
        // The row of a whole disk is not a partition and keeps the number 0.
        if (disk.partitions.size() != 1 || disk.partitions.front().partition_number != 0) {
            SortDiskPartitionNumbers(disk);
        }
    }
}

DiskRow AddUnknownDiskInformation(std::uint32_t disk_number) {
    return Traced(L"orvane::InfoGrabberV2::AddUnknownDiskInformation",
                  [&] { return CreateFakeDisk(disk_number); });
}

bool SetPartitionVolumeLetterFileSystem(const VolumeOnDisk& volume, std::vector<DiskRow>& disks) {
    constexpr const wchar_t* kFunction = L"orvane::InfoGrabberV2::SetPartitionVolumeLetterFileSystem";
    return Traced(kFunction, [&] {
        const std::int64_t last = LastBefore(EndOf(volume.offset, volume.length));
        PartitionRow* row = nullptr;
        Position position = Position::kOutside;
        VisitRowsOf(disks, volume.disk_number, [&](PartitionRow& candidate) {
            row = &candidate;
            position = PositionIn(candidate, volume);
            return position == Position::kOutside;
        });
        if (position == Position::kInside) {
            row->drive = volume.letter;
            row->file_system = volume.file_system;
            return true;
        }
        if (position == Position::kPartial) {
            GetLogger().Write(kLogWarning,
                              L"%s extent (%I64i to %I64i) from volume %s on disk %u only partially inside "
                              L"partition (%I64i to %I64i length %I64i).",
                              kFunction, volume.offset, last, volume.volume_name, volume.disk_number,
                              row->offset, LastBefore(EndOf(row->offset, row->length)), row->length);
            return false;
        }
        GetLogger().Write(kLogWarning, L"%s Failed to find extent (%I64i to %I64i) from volume %s", kFunction,
                          volume.offset, last, volume.volume_name);
        return false;
    });
}

}  // namespace orvane

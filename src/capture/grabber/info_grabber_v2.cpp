#include "capture/grabber/info_grabber_v2.h"

#include "capture/environment/boot_volumes.h"
#include "capture/environment/dll_version.h"
#include "capture/environment/system_information.h"
#include "capture/grabber/disk_rows.h"
#include "common/enumdisk/disk_interfaces.h"
#include "common/enumdisk/enum_disk.h"
#include "common/logger/trace.h"
#include "common/record/find_rows.h"
#include "common/text/byte_range.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

// Not the format number: compatibility C71
constexpr std::uint32_t kRecordVersion = 5;

// Whether the volume gets a row. Only fixed volumes with known extents do.
bool HasRow(const bmr_common::Volume& volume) {
    constexpr const wchar_t* kFunction = L"orvane::InfoGrabberV2::AddVolumeInfo";
    if (volume.drive_type() != DRIVE_FIXED) {
        GetLogger().Write(kLogTrace, L"%s volume %s is not fixed, it gets no row", kFunction,
                          volume.device_name().c_str());
        return false;
    }
    if (volume.extents().empty()) {
        std::wstring reasons;
        for (const std::wstring& reason : volume.backup_failure_reasons()) {
            reasons += L" " + reason;
        }
        GetLogger().Write(kLogWarning, L"%s volume %s has no known extents, it gets no row:%s", kFunction,
                          volume.device_name().c_str(), reasons.c_str());
        return false;
    }
    return true;
}

::Volume RowOf(const bmr_common::Volume& volume, const std::wstring& guid) {
    ::Volume row;
    row.m_GUID = guid;
    row.Name = volume.volume_guid();
    row.DeviceName = volume.device_name();
    row.VolumeLetter = EnumDisk().DriveLetterAmong(volume.volume_id(), volume.mount_points());
    row.Label = volume.information().label;
    row.Serial = volume.information().serial_number;
    row.FileSystem = volume.information().file_system;
    row.Flags = volume.information().file_system_flags;
    row.Dynamic = volume.found_dynamic();
    row.BlockSize = volume.volume_block_size();
    row.m_FileSystemUsedSpace = UsedOf(volume.free_space_ex().total, volume.free_space_ex().total_free);
    return row;
}

}  // namespace

InfoGrabberV2::InfoGrabberV2()
    : environment_(boost::make_shared<EnvInfo>()),
      device_manager_(boost::make_shared<bmr_common::DeviceManager>()),
      volume_manager_(boost::make_shared<bmr_common::VolumeManager>()) {}

bool InfoGrabberV2::CanBackup(const std::vector<std::wstring>& volumes,
                              const std::vector<RequestedDisk>& disks, bool all_volumes) {
    return CanBackup(volumes, disks, *volume_manager_, *device_manager_, all_volumes);
}

boost::shared_ptr<EnvInfo> InfoGrabberV2::GetEnvInfo() {
    return environment_;
}

void InfoGrabberV2::DumpVolumeInfo() {
    Traced(L"orvane::InfoGrabberV2::DumpVolumeInfo", [&] { volume_manager_->DumpInfo(); });
}

bool InfoGrabberV2::ObtainInformation() {
    return Traced(L"orvane::InfoGrabberV2::ObtainInformation", [&] { return Collect(); });
}

bool InfoGrabberV2::Collect() {
    environment_->Version = kRecordVersion;
    environment_->DllVersion = RecordedDllVersion();
    if (!GetWMIInfo(*environment_)) {
        return false;
    }
    environment_->BootIniContents.clear();
    return device_manager_->InitializeWithCurrentDisks() &&
           volume_manager_->InitializeWithCurrentVolumes(*device_manager_, environment_->OS.SystemDevice,
                                                         environment_->OS.BootDevice) &&
           ConvertObtainedInformation();
}

bool InfoGrabberV2::ConvertObtainedInformation() {
    return Traced(L"orvane::InfoGrabberV2::ConvertObtainedInformation", [&] {
        std::vector<NamedVolume> volumes;
        if (!SetVolumeInfoGUID(volumes)) {
            return false;
        }
        environment_->VolumeTable.reserve(volumes.size());
        if (!std::all_of(volumes.begin(), volumes.end(),
                         [&](const NamedVolume& volume) { return AddVolumeInfo(volume); })) {
            return false;
        }
        SortVolumeTable(environment_->VolumeTable);
        if (!AddDiskInformation()) {
            return false;
        }
        FinishDiskRows(environment_->DiskDrives);
        AssignInterfaceTypes(environment_->DiskDrives);
        return AddVolumeInformationToPartitions() && SetVolumePartitionNumbers() &&
               FindBootAndSystemVolumes(environment_->VolumeTable, environment_->DriveLetterTable,
                                        environment_->BootConfig, environment_->OS);
    });
}

bool InfoGrabberV2::SetVolumeInfoGUID(std::vector<NamedVolume>& volumes) const {
    return Traced(L"orvane::InfoGrabberV2::SetVolumeInfoGUID",
                  [&] { return NameVolumes(*volume_manager_, volumes); });
}

bool InfoGrabberV2::FillExtent(const bmr_common::VolumeExtent& extent, DiskExtent& row) const {
    constexpr const wchar_t* kFunction = L"orvane::InfoGrabberV2::AddVolumeInfo";
    const bmr_common::DiskDriveManagerPtr disk = device_manager_->GetDevice(extent.disk_number);
    if (!disk) {
        GetLogger().Write(kLogError, L"%s Can't find disk %u", kFunction, extent.disk_number);
        return false;
    }
    row.m_DiskNumber = extent.disk_number;
    row.m_offsetPartition = static_cast<std::uint64_t>(extent.starting_offset);
    row.m_Size = static_cast<std::uint64_t>(extent.length);
    switch (disk->GetPartitionStyle()) {
        case bmr_common::kStyleMBR:
            row.m_dwDiskSignature = disk->geometry().signature();
            break;
        case bmr_common::kStyleGPT:
            row.disk_guid = disk->geometry().disk_id();
            break;
        default:
            GetLogger().Write(kLogError, L"%s unknown partition style", kFunction);
            return false;
    }
    std::uint32_t number = 0;
    // Extents keep the system's partition number: compatibility C112
    if (disk->GetPartitionNumberAtOffset(extent.starting_offset, number)) {
        row.m_PartitionNumber = static_cast<std::int32_t>(number);
    }
    return true;
}

bool InfoGrabberV2::AddVolumeInfo(const NamedVolume& named_volume) {
    return Traced(L"orvane::InfoGrabberV2::AddVolumeInfo", [&] {
        const auto& [volume, guid] = named_volume;
        if (!HasRow(*volume)) {
            return true;
        }
        ::Volume row = RowOf(*volume, guid);
        row.extents.reserve(volume->extents().size());
        for (const bmr_common::VolumeExtent& extent : volume->extents()) {
            DiskExtent extent_row;
            extent_row.m_GUID = guid;
            if (!FillExtent(extent, extent_row)) {
                return false;
            }
            row.extents.push_back(std::move(extent_row));
        }
        if (!FillExtent(volume->extents().front(), row)) {
            return false;
        }
        if (volume->IsSucceeded(bmr_common::kGettingVolumePartitionSize)) {
            row.m_Size = volume->volume_partition_size();
        }
        environment_->VolumeTable.push_back(std::move(row));
        return true;
    });
}

bool InfoGrabberV2::AddDiskRow(std::uint32_t disk_number) {
    const bmr_common::DiskDriveManagerPtr disk = device_manager_->GetDevice(disk_number);
    if (!disk) {
        environment_->DiskDrives.push_back(AddUnknownDiskInformation(disk_number));
        return true;
    }
    DiskRow row;
    if (!AddExistingDiskInformation(*disk, row)) {
        return false;
    }
    environment_->DiskDrives.push_back(std::move(row));
    return true;
}

bool InfoGrabberV2::AddDiskInformation() {
    return Traced(L"orvane::InfoGrabberV2::AddDiskInformation", [&] {
        std::uint32_t maximum = 0;
        if (!GetMaxPhysicalDiskId(*device_manager_, maximum)) {
            return false;
        }
        for (std::uint32_t number = 0; number <= maximum; ++number) {
            if (!AddDiskRow(number)) {
                return false;
            }
        }
        return true;
    });
}

bool InfoGrabberV2::AddVolumeInformationToPartitions() {
    return Traced(L"orvane::InfoGrabberV2::AddVolumeInformationToPartitions", [&] {
        const auto add = [&](const ::Volume& volume) {
            // The length of the extent: the volume may be shorter.
            const DiskExtent& extent = volume.extents.front();
            return volume.Dynamic ||
                   SetPartitionVolumeLetterFileSystem(
                       {extent.m_DiskNumber, static_cast<std::int64_t>(extent.m_offsetPartition),
                        static_cast<std::int64_t>(extent.m_Size), volume.VolumeLetter, volume.FileSystem,
                        volume.Name.c_str()},
                       environment_->DiskDrives);
        };
        return std::all_of(environment_->VolumeTable.begin(), environment_->VolumeTable.end(), add);
    });
}

bool InfoGrabberV2::SetVolumePartitionNumbers() {
    return Traced(L"orvane::InfoGrabberV2::SetVolumePartitionNumbers",
                  [&] { return SetBasicVolumesPartitionNumber(); });
}

bool InfoGrabberV2::SetBasicVolumesPartitionNumber() {
    return Traced(L"orvane::InfoGrabberV2::SetBasicVolumesPartitionNumber", [&] {
        return std::all_of(
            environment_->VolumeTable.begin(), environment_->VolumeTable.end(),
            [&](::Volume& volume) { return volume.Dynamic || SetBasicVolumePartitionNumber(volume); });
    });
}

bool InfoGrabberV2::SetBasicVolumePartitionNumber(::Volume& volume) const {
    constexpr const wchar_t* kFunction = L"orvane::InfoGrabberV2::SetBasicVolumePartitionNumber";
    return Traced(kFunction, [&] {
        const PartitionRow* const row =
            FindRowAt(environment_->DiskDrives, volume.m_DiskNumber, volume.m_offsetPartition);
        if (row != nullptr) {
            volume.m_PartitionNumber = row->partition_number;
            return true;
        }
        GetLogger().Write(
            kLogError,
            L"%s failed to set volume %s %s on disk %u extent (from %I64u length %I64u) partition number",
            kFunction, volume.Name.c_str(), volume.DeviceName.c_str(), volume.m_DiskNumber,
            volume.m_offsetPartition, volume.m_Size);
        return false;
    });
}

}  // namespace orvane

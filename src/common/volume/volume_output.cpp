// The output of a volume: the text dump and the XML fragment.

#include "common/disk/sizes.h"
#include "common/logger/trace.h"
#include "common/volume/volume.h"
#include "common/xml/xml_values.h"

#include <iterator>

namespace bmr_common {

namespace {

constexpr const wchar_t* kDriveTypeLines[] = {
    L"Drive type: unknown",   L"Drive type: invalid - no root directory",
    L"Drive type: removable", L"Drive type: fixed drive",
    L"Drive type: remote",    L"Drive type: CD ROM",
    L"Drive type: ramdisk",
};

void Line(const wchar_t* text) {
    GetLogger().Write(kLogInformation, text);
}

template <class... Values>
void Line(const wchar_t* format, Values... values) {
    GetLogger().Write(kLogInformation, format, values...);
}

// Logs a size; `format` contains "%I64u(%.2f GB)".
void SizeLine(const wchar_t* format, std::uint64_t bytes) {
    Line(format, bytes, Gigabytes(static_cast<double>(bytes)));
}

void DumpDriveType(bool known, std::uint32_t drive_type) {
    if (!known) {
        Line(L"Drive type: error - failed to obtain");
    } else if (drive_type < std::size(kDriveTypeLines)) {
        Line(kDriveTypeLines[drive_type]);
    } else {
        Line(L"Drive type: %u", drive_type);
    }
}

void DumpMountPoints(bool known, const std::vector<std::wstring>& mount_points) {
    if (!known) {
        Line(L"Error: failed to obtain mount points information");
        return;
    }
    // Ends in a blank, and is logged even without mount points: compatibility C68
    Line(L"Drive letter/Mount points: ");
    for (const std::wstring& mount_point : mount_points) {
        Line(L"  %s", mount_point.c_str());
    }
}

void DumpInformation(bool known, const win::VolumeInformation& information) {
    if (!known) {
        Line(L"Error: failed to obtain volume information");
        return;
    }
    Line(L"Serial number: 0x%x", information.serial_number);
    Line(L"Volume Label: %s", information.label.c_str());
    Line(L"Max component length: %u", information.maximum_component_length);
    Line(L"File system: %s", information.file_system.c_str());
    Line(L"File system flags: 0x%x", information.file_system_flags);
}

void DumpBlockSizes(bool known, const win::DiskFreeSpace& space, std::uint32_t block_size) {
    if (!known) {
        Line(L"Error: failed to obtain block sizes");
        return;
    }
    Line(L"Sectors per cluster: %u", space.sectors_per_cluster);
    Line(L"Bytes per sector: %u", space.bytes_per_sector);
    // The kilobytes are rounded down: compatibility C70
    Line(L"Volume block size: %u KB (%u bytes)", block_size >> 10, block_size);
}

void DumpUserSpaces(bool known, const win::DiskFreeSpaceEx& space) {
    if (!known) {
        Line(L"Error: failed to obtain user spaces information");
        return;
    }
    SizeLine(L"Free user spaces: %I64u(%.2f GB)", space.free_available_to_caller);
    SizeLine(L"Total user spaces: %I64u(%.2f GB)", space.total);
    SizeLine(L"Total free spaces: %I64u(%.2f GB)", space.total_free);
}

void DumpExtents(const std::vector<VolumeExtent>& extents) {
    Line(L"Number of disk extents: %I64u", std::uint64_t{extents.size()});
    for (const VolumeExtent& extent : extents) {
        Line(L"  Disk number: %u", extent.disk_number);
        Line(L"  Disk offset: %I64d", extent.starting_offset);
        Line(L"  Extent length: %I64d", extent.length);
        // Also logged after the last extent: compatibility C69
        if (extents.size() > 1) {
            Line(L"  --------------------------------");
        }
    }
}

void CaptureIfNotEmpty(CMSXmlNode& parent, const char* name, const std::wstring& text) {
    if (!text.empty()) {
        parent.AddTextChild(name, text);
    }
}

void CaptureInformation(CMSXmlNode& parent, const win::VolumeInformation& information) {
    AddNumberElement(parent, "SerialNumber", information.serial_number);
    parent.AddTextChild("VolumeLabel", information.label);
    AddNumberElement(parent, "MaxComponentLength", information.maximum_component_length);
    parent.AddTextChild("FileSystem", information.file_system);
    AddNumberElement(parent, "FileSystemFlags", information.file_system_flags);
}

void CaptureMountPoints(CMSXmlNode& parent, const std::vector<std::wstring>& mount_points) {
    AddNumberElement(parent, "NumberOfMountPoints", mount_points.size());
    std::size_t position = 0;
    for (const std::wstring& mount_point : mount_points) {
        parent.AddTextChild(("MountPoint" + std::to_string(++position)).c_str(), mount_point);
    }
}

void CaptureExtents(CMSXmlNode& parent, const std::vector<VolumeExtent>& extents) {
    AddNumberElement(parent, "NumberOfDiskExtents", extents.size());
    std::size_t position = 0;
    for (const VolumeExtent& extent : extents) {
        CMSXmlNode node = parent.AddChild(("Extent" + std::to_string(++position)).c_str());
        AddNumberElement(node, "DiskNumber", extent.disk_number);
        AddNumberElement(node, "DiskOffset", extent.starting_offset);
        AddNumberElement(node, "ExtentLength", extent.length);
    }
}

}  // namespace

void Volume::DumpInfo() const {
    Traced(L"bmr_common::Volume::DumpInfo", [&] {
        Line(L"Volume ID: %s", volume_id_.c_str());
        Line(L"Volume GUID: %s", volume_guid_.c_str());
        Line(L"Device name: %s", device_name_.c_str());
        Line(L"Volume available for backup: %s", TrueOrFalse(can_backup_));
        if (!can_backup_) {
            for (const std::wstring& reason : reasons_) {
                Line(L"  Failure reason: %s", reason.c_str());
            }
        }
        DumpDriveType(status_.IsSucceeded(kGettingDriveType), drive_type_);
        DumpMountPoints(status_.IsSucceeded(kGettingMountPoints), mount_points_);
        DumpInformation(status_.IsSucceeded(kGettingVolumeInformation), information_);
        if (status_.IsSucceeded(kGettingVolumePartitionSize)) {
            SizeLine(L"Volume partition size: %I64u(%.2f GB)", volume_partition_size_);
        } else {
            Line(L"Error: failed to obtain disk length information");
        }
        DumpBlockSizes(status_.IsSucceeded(kGettingVolumeFreeSpace), free_space_, volume_block_size());
        DumpUserSpaces(status_.IsSucceeded(kGettingVolumeFreeSpaceEx), free_space_ex_);
        if (vorn_used_spaces_) {
            SizeLine(L"The application's used spaces: %I64u(%.2f GB)", *vorn_used_spaces_);
        } else {
            // Logged every time, at information level: compatibility C67
            Line(L"Error: failed to obtain the application's used spaces information");
        }
        Line(L"System volume: %s", TrueOrFalse(is_system_volume_));
        Line(L"Boot volume: %s", TrueOrFalse(is_boot_volume_));
        if (status_.IsSucceeded(kGettingDiskExtents)) {
            Line(L"Dynamic volume: %s", TrueOrFalse(is_dynamic_));
            Line(L"Active partition: %s", TrueOrFalse(is_on_active_partition_));
            DumpExtents(extents_);
        } else {
            Line(L"Error: failed to obtain disk extents information");
        }
        Line(L"");
    });
}

void Volume::CaptureInfo(CMSXmlNode& parent) const {
    Traced(L"bmr_common::Volume::CaptureInfo", [&] {
        CaptureIfNotEmpty(parent, "VolumeId", volume_id_);
        CaptureIfNotEmpty(parent, "VolumeGUID", volume_guid_);
        CaptureIfNotEmpty(parent, "DeviceName", device_name_);
        if (status_.IsSucceeded(kGettingVolumeInformation)) {
            CaptureInformation(parent, information_);
        }
        if (status_.IsSucceeded(kGettingVolumePartitionSize)) {
            AddNumberElement(parent, "VolumePartitionSize", volume_partition_size_);
        }
        if (status_.IsSucceeded(kGettingMountPoints)) {
            CaptureMountPoints(parent, mount_points_);
        }
        if (status_.IsSucceeded(kGettingVolumeFreeSpace)) {
            AddNumberElement(parent, "SectorsPerCluster", free_space_.sectors_per_cluster);
            AddNumberElement(parent, "BytesPerSector", free_space_.bytes_per_sector);
            AddNumberElement(parent, "VolumeBlockSize", volume_block_size());
        }
        if (status_.IsSucceeded(kGettingVolumeFreeSpaceEx)) {
            AddNumberElement(parent, "FreeUserSpaces", free_space_ex_.free_available_to_caller);
            AddNumberElement(parent, "TotalUserSpaces", free_space_ex_.total);
            AddNumberElement(parent, "TotalFreeSpaces", free_space_ex_.total_free);
        }
        if (vorn_used_spaces_) {
            AddNumberElement(parent, "VornUsedSpaces", *vorn_used_spaces_);
        }
        parent.AddTextChild("SystemVolume", TrueOrFalse(is_system_volume_));
        parent.AddTextChild("BootVolume", TrueOrFalse(is_boot_volume_));
        if (status_.IsSucceeded(kGettingDiskExtents)) {
            parent.AddTextChild("DynamicVolume", TrueOrFalse(is_dynamic_));
            parent.AddTextChild("ActivePartition", TrueOrFalse(is_on_active_partition_));
            CaptureExtents(parent, extents_);
        }
    });
}

}  // namespace bmr_common

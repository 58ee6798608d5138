#include "export/expected_sections.h"

#include <algorithm>
#include <cwchar>

namespace {

const GUID kEfiSystem{0xc12a7328, 0xf81f, 0x11d2, {0xba, 0x4b, 0x00, 0xa0, 0xc9, 0x3e, 0xc9, 0x3b}};
constexpr std::wstring_view kDiskVolume = L"\\Device\\HarddiskVolume";

void Append(std::vector<XmlTree>& elements, std::vector<XmlTree> more) {
    elements.insert(elements.end(), more.begin(), more.end());
}

// The volume's GUID path. Empty unless the volume has a link in the object directory and is enumerated by the
// volume search.
std::wstring GuidPath(const machine::Volume& volume) {
    return volume.guid.empty() || !volume.linked || !volume.enumerated
               ? L""
               : L"\\\\?\\Volume" + volume.guid + L"\\";
}

bool IsListed(const machine::Volume& volume) {
    return !GuidPath(volume).empty() || volume.device.starts_with(kDiskVolume);
}

bool SameName(const std::wstring& device, const std::string& name) {
    return _wcsicmp(device.c_str(), std::wstring(name.begin(), name.end()).c_str()) == 0;
}

bool Contains(const machine::Partition& partition, const machine::Extent& extent) {
    const bool counts = partition.style == PARTITION_STYLE_MBR ? partition.recognized : true;
    return counts && !IsUnused(partition) && partition.length > 0 && extent.offset >= partition.offset &&
           extent.offset < partition.offset + partition.length &&
           extent.offset + extent.length <= partition.offset + partition.length;
}

bool IsBootable(const machine::Partition& partition) {
    return partition.style == PARTITION_STYLE_MBR ? partition.active
                                                  : IsEqualGUID(partition.gpt_type, kEfiSystem);
}

const machine::Disk* ListedDisk(const machine::Description& machine, std::uint32_t index) {
    const std::vector<std::uint32_t> listed = ListedDisks(machine);
    return std::find(listed.begin(), listed.end(), index) == listed.end() ? nullptr
                                                                          : FindDisk(machine, index);
}

bool LiesOnActivePartition(const machine::Description& machine, const std::vector<machine::Extent>& extents) {
    const machine::Disk* disk = extents.empty() ? nullptr : ListedDisk(machine, extents.front().disk);
    if (disk == nullptr || !IsPartitioned(*disk)) {
        return false;
    }
    std::vector<machine::Partition> containing;
    std::copy_if(disk->partitions.begin(), disk->partitions.end(), std::back_inserter(containing),
                 [&](const machine::Partition& partition) { return Contains(partition, extents.front()); });
    return containing.size() == 1 && IsBootable(containing.front());
}

bool LiesOnDynamicDisk(const machine::Description& machine, const std::vector<machine::Extent>& extents) {
    const machine::Disk* disk = extents.size() == 1 ? ListedDisk(machine, extents.front().disk) : nullptr;
    return extents.size() > 1 || (disk != nullptr && IsDynamic(*disk));
}

std::vector<XmlTree> Identity(const machine::Volume& volume) {
    std::vector<XmlTree> elements;
    if (const std::wstring path = GuidPath(volume); !path.empty()) {
        Append(elements, {Leaf("VolumeId", AnsiText(path)), Leaf("VolumeGUID", AnsiText(path))});
    }
    elements.push_back(Leaf("DeviceName", AnsiText(volume.device)));
    return elements;
}

std::vector<XmlTree> Information(const machine::Volume& volume) {
    return {NumberLeaf("SerialNumber", volume.serial), Leaf("VolumeLabel", AnsiText(volume.label)),
            NumberLeaf("MaxComponentLength", volume.max_component_length),
            Leaf("FileSystem", AnsiText(volume.file_system)),
            NumberLeaf("FileSystemFlags", volume.file_system_flags)};
}

std::vector<XmlTree> MountPoints(const machine::Volume& volume) {
    std::vector<XmlTree> elements = {NumberLeaf("NumberOfMountPoints", volume.mount_points.size())};
    for (std::size_t i = 0; i < volume.mount_points.size(); ++i) {
        elements.push_back(Leaf("MountPoint" + std::to_string(i + 1), AnsiText(volume.mount_points[i])));
    }
    return elements;
}

std::vector<XmlTree> Clusters(const machine::Volume& volume) {
    return {NumberLeaf("SectorsPerCluster", volume.sectors_per_cluster),
            NumberLeaf("BytesPerSector", volume.bytes_per_sector),
            NumberLeaf("VolumeBlockSize", volume.sectors_per_cluster * volume.bytes_per_sector)};
}

std::vector<XmlTree> Space(const machine::Volume& volume) {
    return {NumberLeaf("FreeUserSpaces", volume.free_bytes_to_caller),
            NumberLeaf("TotalUserSpaces", volume.total_bytes),
            NumberLeaf("TotalFreeSpaces", volume.free_bytes)};
}

std::vector<XmlTree> Extents(const std::vector<machine::Extent>& extents) {
    std::vector<XmlTree> elements = {NumberLeaf("NumberOfDiskExtents", extents.size())};
    for (std::size_t i = 0; i < extents.size(); ++i) {
        elements.push_back(
            Branch("Extent" + std::to_string(i + 1), {
                                                         NumberLeaf("DiskNumber", extents[i].disk),
                                                         NumberLeaf("DiskOffset", extents[i].offset),
                                                         NumberLeaf("ExtentLength", extents[i].length),
                                                     }));
    }
    return elements;
}

XmlTree VolumeElement(const machine::Description& machine, const machine::Volume& volume) {
    XmlTree element = Branch("Volume", Identity(volume));
    // Removable volumes are not queried. The queries fail without a medium or a known file system, and where
    // the description says so.
    const bool asked = volume.drive_type != DRIVE_REMOVABLE && volume.has_media;
    const auto answers = [&](const char* call) { return asked && !volume.errors.Find(call); };
    const auto file_system_answers = [&](const char* call) {
        return !volume.file_system.empty() && answers(call);
    };
    const auto device_answers = [&](const char* call) { return answers("CreateFileW") && answers(call); };
    if (file_system_answers("GetVolumeInformationW")) {
        Append(element.children, Information(volume));
    }
    if (device_answers("DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO")) {
        element.children.push_back(NumberLeaf("VolumePartitionSize", volume.length));
    }
    Append(element.children, MountPoints(volume));
    if (file_system_answers("GetDiskFreeSpaceW")) {
        Append(element.children, Clusters(volume));
    }
    if (file_system_answers("GetDiskFreeSpaceExW")) {
        Append(element.children, Space(volume));
    }
    const wchar_t* const os = L"Win32_OperatingSystem";
    Append(element.children,
           {TruthLeaf("SystemVolume", SameName(volume.device, WmiTextOf(machine, os, L"SystemDevice"))),
            TruthLeaf("BootVolume", SameName(volume.device, WmiTextOf(machine, os, L"BootDevice")))});
    if (volume.extents && device_answers("DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS")) {
        Append(element.children,
               {TruthLeaf("DynamicVolume", LiesOnDynamicDisk(machine, *volume.extents)),
                TruthLeaf("ActivePartition", LiesOnActivePartition(machine, *volume.extents))});
        Append(element.children, Extents(*volume.extents));
    }
    return element;
}

}  // namespace

XmlTree ExpectedVolumes(const machine::Description& machine) {
    std::vector<machine::Volume> listed;
    std::copy_if(machine.volumes.begin(), machine.volumes.end(), std::back_inserter(listed), IsListed);
    std::sort(listed.begin(), listed.end(), [](const machine::Volume& left, const machine::Volume& right) {
        return left.device < right.device;
    });
    XmlTree volumes = Branch("VolumeInfo", {NumberLeaf("NumberOfVolumes", listed.size())});
    for (const machine::Volume& volume : listed) {
        volumes.children.push_back(VolumeElement(machine, volume));
    }
    return volumes;
}

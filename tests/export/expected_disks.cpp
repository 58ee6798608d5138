#include "export/expected_sections.h"
#include "machine/description/wmi_defaults.h"

#include <algorithm>
#include <map>

namespace {

constexpr std::uint8_t kLdm = 0x42;
const GUID kLdmData{0xaf9b60a0, 0x1431, 0x4f62, {0xbc, 0x68, 0x33, 0x11, 0x71, 0x4a, 0x69, 0xad}};

void Append(std::vector<XmlTree>& elements, std::vector<XmlTree> more) {
    elements.insert(elements.end(), more.begin(), more.end());
}

bool IsDynamicPartition(const machine::Partition& partition) {
    return partition.style == PARTITION_STYLE_MBR ? partition.mbr_type == kLdm
                                                  : IsEqualGUID(partition.gpt_type, kLdmData);
}

std::vector<XmlTree> Detection(const machine::Disk& disk) {
    const DISK_INT13_INFO& int13 = disk.int13;
    const DISK_EX_INT13_INFO& extended = disk.ex_int13;
    switch (disk.detection_type) {
        case 1:
            return {NumberLeaf("DriveSelect", int13.DriveSelect),
                    NumberLeaf("MaxCylinders", int13.MaxCylinders),
                    NumberLeaf("SectorsPerTrack", int13.SectorsPerTrack),
                    NumberLeaf("MaxHeads", int13.MaxHeads), NumberLeaf("NumberDrives", int13.NumberDrives)};
        case 2:
            return {NumberLeaf("ExBufferSize", extended.ExBufferSize),
                    NumberLeaf("ExFlags", extended.ExFlags),
                    NumberLeaf("ExCylinders", extended.ExCylinders),
                    NumberLeaf("ExHeads", extended.ExHeads),
                    NumberLeaf("ExSectorsPerTrack", extended.ExSectorsPerTrack),
                    NumberLeaf("ExSectorsPerDrive", extended.ExSectorsPerDrive),
                    NumberLeaf("ExSectorSize", extended.ExSectorSize),
                    NumberLeaf("ExReserved", extended.ExReserved)};
        default:
            return {};
    }
}

XmlTree MbrPartition(const std::string& name, const machine::Partition& partition) {
    return Branch(name, {
                            TruthLeaf("DynamicPartition", IsDynamicPartition(partition)),
                            NumberLeaf("PartitionNumber", partition.number),
                            NumberLeaf("Offset", partition.offset),
                            NumberLeaf("Length", partition.length),
                            TruthLeaf("RewritePartition", partition.rewrite),
                            Leaf("Style", "MBR"),
                            NumberLeaf("Type", partition.mbr_type),
                            TruthLeaf("BootIndicator", partition.active),
                            TruthLeaf("RecognizedPartition", partition.recognized),
                            NumberLeaf("HiddenSectors", partition.hidden_sectors),
                        });
}

std::vector<XmlTree> MbrTable(const machine::Disk& disk) {
    std::vector<XmlTree> table = {Leaf("PartitionStyle", "0"),
                                  NumberLeaf("NumberOfPartitions", disk.partitions.size())};
    for (std::size_t i = 0; i < disk.partitions.size(); ++i) {
        table.push_back(MbrPartition("Partition" + std::to_string(i + 1), disk.partitions[i]));
    }
    return table;
}

bool CanBackup(const machine::Disk* disk) {
    return disk != nullptr && IsPartitioned(*disk) &&
           std::any_of(disk->partitions.begin(), disk->partitions.end(),
                       [](const machine::Partition& partition) { return !IsUnused(partition); });
}

XmlTree DiskElement(const std::string& name, std::uint32_t index, const machine::Disk* disk) {
    XmlTree element = Branch(name, {NumberLeaf("DiskId", index)});
    if (!CanBackup(disk)) {
        element.children.push_back(Leaf("DiskSize", "0"));
        return element;
    }
    const bool mbr = disk->style == PARTITION_STYLE_MBR;
    Append(element.children, {
                                 TruthLeaf("DynamicDisk", IsDynamic(*disk)),
                                 NumberLeaf("DiskSize", disk->size),
                                 NumberLeaf("Cyclinders", disk->cylinders),
                                 NumberLeaf("MediaType", disk->media_type),
                                 NumberLeaf("TracksPerCylinder", disk->tracks_per_cylinder),
                                 NumberLeaf("SectorsPerTrack", disk->sectors_per_track),
                                 NumberLeaf("bytes_per_sector", disk->bytes_per_sector),
                                 Leaf("PartitionStyle", mbr ? "MBR" : "GPT"),
                                 mbr ? NumberLeaf("Signature", disk->signature) : Leaf("GUID", ""),
                                 NumberLeaf("DetectionType", disk->detection_type),
                             });
    Append(element.children, Detection(*disk));
    if (mbr) {
        Append(element.children, MbrTable(*disk));
    }
    return element;
}

}  // namespace

std::vector<std::uint32_t> ListedDisks(const machine::Description& machine) {
    constexpr std::uint32_t kNone = 255;
    const machine::WmiClass& drives = machine.wmi.at(machine::WmiClassKey(L"Win32_DiskDrive"));
    // A list that breaks off ends there.
    const std::size_t whole = drives.break_error ? std::min(drives.whole_objects, drives.instances.size())
                                                 : drives.instances.size();
    std::map<std::string, std::uint32_t> listed;  // sorted by the number as text
    for (std::size_t i = 0; i < whole; ++i) {
        const auto index =
            static_cast<std::uint32_t>(machine::FindProperty(drives.instances[i], L"Index")->value.number);
        if (index != kNone) {
            listed.emplace(std::to_string(index), index);
        }
    }
    std::vector<std::uint32_t> indexes;
    for (const auto& [text, index] : listed) {
        indexes.push_back(index);
    }
    return indexes;
}

const machine::Disk* FindDisk(const machine::Description& machine, std::uint32_t index) {
    const auto found = std::find_if(machine.disks.begin(), machine.disks.end(),
                                    [&](const machine::Disk& disk) { return disk.index == index; });
    return found == machine.disks.end() ? nullptr : &*found;
}

bool IsPartitioned(const machine::Disk& disk) {
    const bool answers = !disk.errors.Find("CreateFileW") &&
                         !disk.errors.Find("DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX");
    return answers &&
           (disk.style == PARTITION_STYLE_GPT || (disk.style == PARTITION_STYLE_MBR && disk.signature != 0));
}

bool IsUnused(const machine::Partition& partition) {
    return partition.style == PARTITION_STYLE_MBR ? partition.mbr_type == 0
                                                  : IsEqualGUID(partition.gpt_type, GUID{});
}

bool IsDynamic(const machine::Disk& disk) {
    return IsPartitioned(disk) &&
           std::any_of(disk.partitions.begin(), disk.partitions.end(), IsDynamicPartition);
}

XmlTree ExpectedDisks(const machine::Description& machine) {
    const std::vector<std::uint32_t> listed = ListedDisks(machine);
    XmlTree disks = Branch("DeviceInfo", {NumberLeaf("NumberOfDisks", listed.size())});
    for (std::size_t i = 0; i < listed.size(); ++i) {
        disks.children.push_back(
            DiskElement("Disk" + std::to_string(i + 1), listed[i], FindDisk(machine, listed[i])));
    }
    return disks;
}

#include "capture/document/flat_tables.h"

#include "capture/document/fields.h"
#include "common/xml/xml_values.h"

namespace {

// The elements of a disk that precede its partitions.
constexpr Field<DiskRow> kDisk[] = {
    // Signed, like the size below: compatibility C114
    {"index", Signed<DiskRow, std::uint32_t>{&DiskRow::disk_number}},
    {"partition_style", &DiskRow::partition_style},
    {"disk_guid", &DiskRow::disk_guid},
    {"size", Signed<DiskRow, std::uint64_t>{&DiskRow::size}},
    {"disk_bytes_per_sector", &DiskRow::bytes_per_sector},
    {"interface", &DiskRow::interface_type},
};

constexpr Field<PartitionRow> kPartition[] = {
    {"size", &PartitionRow::length},
    {"mbr_partition_type", &PartitionRow::mbr_type},
    {"gpt_partition_type", &PartitionRow::gpt_type},
    {"partition_style", &PartitionRow::partition_style},
    {"partition_guid", &PartitionRow::gpt_id},
    {"start", &PartitionRow::offset},
    {"hidden", &PartitionRow::hidden},
    {"primary", &PartitionRow::active},
    {"partition", &PartitionRow::partition_number},
    // Without the trailing backslash in format 1: compatibility C105
    {"drive", &PartitionRow::drive},
    {"fs", &PartitionRow::file_system},
    {"parttype", &PartitionRow::kind},
    // Filled in format 1 only: compatibility C106
    {"volume", &PartitionRow::volume},
    {"operation", &PartitionRow::operation},
};

constexpr Field<::Volume> kVolume[] = {
    {"m_dwDiskSignature", &::Volume::m_dwDiskSignature},
    {"disk_guid", &::Volume::disk_guid},
    // The volume GUID path in format 1, a new GUID in format 2: compatibility C107
    {"m_GUID", &::Volume::m_GUID},
    {"m_offsetPartition", &::Volume::m_offsetPartition},
    {"m_Size", &::Volume::m_Size},
    {"m_DiskNumber", &::Volume::m_DiskNumber},
    {"m_PartitionNumber", &::Volume::m_PartitionNumber},
    {"m_FileSystemUsedSpace", &::Volume::m_FileSystemUsedSpace},
    {"Name", &::Volume::Name},
    {"DeviceName", &::Volume::DeviceName},
    {"VolumeLetter", &::Volume::VolumeLetter},
    {"Label", &::Volume::Label},
    {"Serial", &::Volume::Serial},
    {"FileSystem", &::Volume::FileSystem},
    {"Flags", &::Volume::Flags},
    // The boot volume is not marked: compatibility C97
    {"SystemVolume", &::Volume::SystemVolume},
    {"Dynamic", &::Volume::Dynamic},
    {"BlockSize", &::Volume::BlockSize},
};

constexpr Field<DiskExtent> kExtent[] = {
    {"m_dwDiskSignature", &DiskExtent::m_dwDiskSignature},
    {"disk_guid", &DiskExtent::disk_guid},
    {"m_GUID", &DiskExtent::m_GUID},
    {"m_offsetPartition", &DiskExtent::m_offsetPartition},
    {"m_Size", &DiskExtent::m_Size},
    {"m_DiskNumber", &DiskExtent::m_DiskNumber},
    {"m_PartitionNumber", &DiskExtent::m_PartitionNumber},
};

constexpr Field<DriveLetterEntry> kDrive[] = {
    {"m_strDrive", &DriveLetterEntry::m_strDrive},
    {"m_guidVolume", &DriveLetterEntry::m_guidVolume},
};

constexpr Field<BootConfig> kBootConfig[] = {
    {"m_guidBootVolume", &BootConfig::m_guidBootVolume},
    {"m_guidSystemVolume", &BootConfig::m_guidSystemVolume},
    {"m_strBootFolder", &BootConfig::m_strBootFolder},
    {"m_strBootOptions", &BootConfig::m_strBootOptions},
    {"m_strOS", &BootConfig::m_strOS},
    {"m_OSArchitecture", &BootConfig::m_OSArchitecture},
    {"numeric_version_string", &BootConfig::numeric_version_string},
    {"product_type", &BootConfig::product_type},
};

// Appends one element per record, named `prefix` plus the index of the record, and calls `write_more` after
// the fields of each record. Indexes start at 0, those of the disk model at 1: compatibility C88
template <class Record, class Fields, class WriteMore>
void WriteRows(CMSXmlNode& parent, const char* prefix, const std::vector<Record>& records,
               const Fields& fields, WriteMore&& write_more) {
    std::size_t position = 0;
    for (const Record& record : records) {
        CMSXmlNode row = parent.AddChild((prefix + std::to_string(position++)).c_str());
        WriteFields(row, record, fields);
        write_more(row, record);
    }
}

template <class Record, class Fields>
void WriteRows(CMSXmlNode& parent, const char* prefix, const std::vector<Record>& records,
               const Fields& fields) {
    WriteRows(parent, prefix, records, fields, [](CMSXmlNode&, const Record&) {});
}

}  // namespace

void WriteDiskDrives(CMSXmlNode& environment, const std::vector<DiskRow>& disks) {
    CMSXmlNode table = environment.AddChild("DiskDrives");
    // The names of the counts and of the elements: compatibility C92
    AddNumberElement(table, "size_idx", disks.size());
    WriteRows(table, "x", disks, kDisk, [](CMSXmlNode& row, const DiskRow& disk) {
        AddNumberElement(row, "size_idy", disk.partitions.size());
        WriteRows(row, "y", disk.partitions, kPartition);
    });
}

void WriteVolumeTable(CMSXmlNode& environment, const std::vector<::Volume>& volumes) {
    CMSXmlNode table = environment.AddChild("VolumeTable");
    AddNumberElement(table, "TotalVolumes", volumes.size());
    WriteRows(table, "volume", volumes, kVolume, [](CMSXmlNode& row, const ::Volume& volume) {
        // No count precedes the extents: compatibility C94
        WriteRows(row, "extent", volume.extents, kExtent);
    });
}

void WriteDriveLetterTable(CMSXmlNode& environment, const std::vector<DriveLetterEntry>& drives) {
    CMSXmlNode table = environment.AddChild("DriveLetterTable");
    AddNumberElement(table, "TotalDrives", drives.size());
    WriteRows(table, "Drive", drives, kDrive);
}

void WriteBootConfig(CMSXmlNode& environment, const BootConfig& boot_config) {
    CMSXmlNode section = environment.AddChild("BootConfig");
    WriteFields(section, boot_config, kBootConfig);
}

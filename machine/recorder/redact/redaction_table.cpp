#include "machine/recorder/redact/redaction_table.h"

#include "machine/description/text.h"

#include <algorithm>

namespace recorder {
namespace {

constexpr CallRow kCalls[] = {
    // clang-format off
    {"GetLogicalDrives"},
    {"QueryDosDeviceW", Content::kPath, Form::kPaths},
    {"FindFirstVolumeW", Content::kPath, Form::kNone, PartForm::kNames},
    {"GetVolumePathNamesForVolumeNameW", Content::kPath, Form::kPaths},
    {"GetVolumeNameForVolumeMountPointW", Content::kPath, Form::kPaths},
    {"ZwQueryDirectoryObject", Content::kPath, Form::kNone, PartForm::kNames},
    {"CreateFileW", Content::kPath},
    {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY", Content::kPath},
    {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", Content::kPath, Form::kGeometry},
    {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT", Content::kPath, Form::kLayout},
    {"DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX", Content::kPath, Form::kLayoutEx},
    {"DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO", Content::kPath},
    {"DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO", Content::kPath},
    {"DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX", Content::kPath, Form::kPartition},
    {"DeviceIoControl:IOCTL_DISK_IS_WRITABLE", Content::kPath},
    {"DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER", Content::kPath},
    {"DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", Content::kPath},
    {"GetDriveTypeW", Content::kPath},
    {"GetVolumeInformationW", Content::kPath, Form::kNone, PartForm::kVolume},
    {"GetDiskFreeSpaceW", Content::kPath},
    {"GetDiskFreeSpaceExW", Content::kPath},
    {"GetFirmwareType"},
    {"GetFirmwareEnvironmentVariableW"},
    {"CoCreateInstance"},
    {"IXMLDOMNode::get_xml"},
    {"IWbemServices::ExecQuery", Content::kWord, Form::kNone, PartForm::kWmi},
    {"IEnumWbemClassObject::Next"},
    {"RegEnumValueW", Content::kWord, Form::kNone, PartForm::kRegistry},
    // clang-format on
};

constexpr ValueRow kVolume[] = {
    {L"label", Content::kText}, {L"fileSystem", Content::kWord},
    {L"serial", Content::kId},  {L"maxComponentLength", Content::kWord},
    {L"flags", Content::kWord},
};

constexpr ValueRow kRegistry[] = {
    {L"SystemStartOptions", Content::kOptions},    {L"SystemBootDevice", Content::kWord},
    {L"FirmwareBootDevice", Content::kWord},       {L"LastBootSucceeded", Content::kWord},
    {L"LastBootShutdown", Content::kWord},         {L"BootDriverFlags", Content::kWord},
    {L"DirtyShutdownCount", Content::kWord},       {L"EarlyStartServices", Content::kWord},
    {L"PreshutdownOrder", Content::kWord},         {L"ServiceControlManagerExtension", Content::kWord},
    {L"WaitToKillServiceTimeout", Content::kWord}, {L"SvcHostSplitThresholdInKB", Content::kWord},
};

}  // namespace

std::span<const CallRow> CallTable() {
    return kCalls;
}

const CallRow* FindCall(std::string_view call) {
    const auto found = std::find_if(std::begin(kCalls), std::end(kCalls),
                                    [&](const CallRow& row) { return row.call == call; });
    return found == std::end(kCalls) ? nullptr : &*found;
}

std::span<const ValueRow> VolumeTable() {
    return kVolume;
}

std::span<const ValueRow> RegistryTable() {
    return kRegistry;
}

Content ContentOf(std::span<const ValueRow> table, std::wstring_view name) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const ValueRow& row) { return machine::EqualNames(row.name, name); });
    return found == table.end() ? Content::kText : found->content;
}

Content ContentOfProperty(std::wstring_view wmi_class, std::wstring_view property) {
    const auto table = WmiTable();
    const auto found = std::find_if(table.begin(), table.end(), [&](const WmiRow& row) {
        return machine::EqualNames(row.name, wmi_class);
    });
    return found == table.end() ? Content::kText : ContentOf(found->values, property);
}

}  // namespace recorder

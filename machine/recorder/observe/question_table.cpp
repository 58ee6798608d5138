#include "machine/recorder/observe/question_table.h"

namespace recorder {
namespace {

// The library's own first sizes are among them: 768 and 512 for layouts, 168 for the older one, 512 and 32
// for extents, 255 and 260 characters for names.
constexpr std::uint32_t kNothing[] = {0};
constexpr std::uint32_t kGeometry[] = {23, 24, 512};
constexpr std::uint32_t kGeometryEx[] = {31, 32, 64, 120, 1024};
constexpr std::uint32_t kLayout[] = {4, 168, 65536};
constexpr std::uint32_t kLayoutEx[] = {4, 48, 512, 768, 65536};
constexpr std::uint32_t kLength[] = {4, 8, 512};
constexpr std::uint32_t kPartition[] = {16, 32, 512};
constexpr std::uint32_t kPartitionEx[] = {32, 144, 512};
constexpr std::uint32_t kDeviceNumber[] = {4, 12, 512};
constexpr std::uint32_t kExtents[] = {16, 31, 32, 56, 512, 65536};
constexpr std::uint32_t kName[] = {260};
constexpr std::uint32_t kNames[] = {4, 260, 65536};
constexpr std::uint32_t kVolumeName[] = {10, 255, 260};
constexpr std::uint32_t kTexts[] = {2, 255, 260};
constexpr std::uint32_t kEntry[] = {260};

constexpr const wchar_t* kControlKey = L"SYSTEM\\CurrentControlSet\\Control";
constexpr const wchar_t* kXmlDocument = L"Msxml2.DOMDocument.3.0";
constexpr const wchar_t* kNoNameSpace = L"{00000000-0000-0000-0000-000000000000}";

constexpr QuestionRow kTable[] = {
    // clang-format off
    {Subject::kMachine, "GetLogicalDrives", L"", {kNothing}},
    {Subject::kMachine, "QueryDosDeviceW", L"", {kNames, true}},
    {Subject::kMachine, "FindFirstVolumeW", L"", {kVolumeName}},
    {Subject::kMachine, "ZwQueryDirectoryObject", L"\\Device", {kEntry}},
    {Subject::kMachine, "ZwQueryDirectoryObject", L"\\GLOBAL??", {kEntry}},
    {Subject::kMachine, "GetFirmwareType", L"", {kNothing}},
    {Subject::kMachine, "GetFirmwareEnvironmentVariableW", kNoNameSpace, {kNothing}},
    {Subject::kMachine, "RegEnumValueW", kControlKey, {kNothing}},
    {Subject::kMachine, "IWbemServices::ExecQuery", L"Win32_DiskDrive", {kNothing}},
    {Subject::kMachine, "IWbemServices::ExecQuery", L"Win32_Processor", {kNothing}},
    {Subject::kMachine, "IWbemServices::ExecQuery", L"Win32_OperatingSystem", {kNothing}},
    {Subject::kMachine, "IWbemServices::ExecQuery", L"Win32_ComputerSystem", {kNothing}},
    {Subject::kMachine, "IWbemServices::ExecQuery", L"Win32_BootConfiguration", {kNothing}},
    {Subject::kMachine, "IEnumWbemClassObject::Next", L"Win32_BootConfiguration", {kNothing}},
    {Subject::kMachine, "CoCreateInstance", kXmlDocument, {kNothing}},
    {Subject::kMachine, "IXMLDOMNode::get_xml", kXmlDocument, {kNothing}},

    {Subject::kDosName, "QueryDosDeviceW", nullptr, {kName}},

    {Subject::kVolumeName, "GetVolumePathNamesForVolumeNameW", nullptr, {kNames, true}},

    {Subject::kDisk, "CreateFileW", nullptr, {kNothing}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY", nullptr, {kGeometry}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", nullptr, {kGeometryEx}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT", nullptr, {kLayout, true}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX", nullptr, {kLayoutEx, true}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO", nullptr, {kLength}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO", nullptr, {kPartition}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX", nullptr, {kPartitionEx}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_DISK_IS_WRITABLE", nullptr, {kNothing}, true},
    {Subject::kDisk, "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER", nullptr, {kDeviceNumber}, true},

    {Subject::kVolumeDevice, "CreateFileW", nullptr, {kNothing}, true},
    {Subject::kVolumeDevice, "DeviceIoControl:IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", nullptr, {kExtents, true}, true},
    {Subject::kVolumeDevice, "DeviceIoControl:IOCTL_DISK_GET_LENGTH_INFO", nullptr, {kLength}, true},
    {Subject::kVolumeDevice, "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO", nullptr, {kPartition}, true},
    {Subject::kVolumeDevice, "DeviceIoControl:IOCTL_DISK_GET_PARTITION_INFO_EX", nullptr, {kPartitionEx}, true},
    {Subject::kVolumeDevice, "DeviceIoControl:IOCTL_STORAGE_GET_DEVICE_NUMBER", nullptr, {kDeviceNumber}, true},

    {Subject::kVolumeRoot, "GetDriveTypeW", nullptr, {kNothing}},
    {Subject::kVolumeRoot, "GetVolumeInformationW", nullptr, {kTexts}},
    {Subject::kVolumeRoot, "GetDiskFreeSpaceW", nullptr, {kNothing}},
    {Subject::kVolumeRoot, "GetDiskFreeSpaceExW", nullptr, {kNothing}},

    {Subject::kMountPoint, "GetVolumeNameForVolumeMountPointW", nullptr, {kVolumeName}},
    // clang-format on
};

constexpr Subject kSubjects[] = {Subject::kMachine,   Subject::kDosName,      Subject::kVolumeName,
                                 Subject::kDisk,      Subject::kVolumeDevice, Subject::kVolumeRoot,
                                 Subject::kMountPoint};

}  // namespace

std::span<const QuestionRow> QuestionTable() {
    return kTable;
}

std::span<const Subject> Subjects() {
    return kSubjects;
}

}  // namespace recorder

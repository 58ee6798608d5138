#include "capture/grabber/info_grabber.h"

#include "capture/document/document_text.h"
#include "capture/document/environment_document.h"
#include "capture/grabber/document_buffer.h"
#include "capture/grabber/grabber_exception.h"
#include "common/logger/trace.h"
#include "common/platform/com_enabler.h"
#include "common/text/decimal_text.h"

namespace orvane {

namespace {

constexpr wchar_t kCanBackup[] = L"orvane::InfoGrabber::CanBackup";

using Lines = std::vector<std::wstring>;

// Each line is used as a format string: compatibility C2
void LogLines(const Lines& lines) {
    for (const std::wstring& line : lines) {
        GetLogger().WriteTextAsFormat(kLogError, line.c_str());
    }
}

void Append(Lines& lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

std::wstring RefusalOf(const std::wstring& name, const bmr_common::Volume& volume) {
    std::wstring line = L"Volume " + name;
    if (!volume.mount_points().empty()) {
        line += L" (Mounted as:";
        for (const std::wstring& path : volume.mount_points()) {
            line += L" " + path;
        }
        line += L")";
    }
    return line + L" cannot be backed up because:";
}

bool CheckDisk(const RequestedDisk& request, const bmr_common::DeviceManager& device_manager, Lines& errors) {
    const std::wstring number = DecimalText(request.disk_number);
    const bmr_common::DiskDriveManagerPtr disk = device_manager.GetDevice(request.disk_number);
    if (!disk) {
        // Logged here and again with the other disk errors: compatibility C37
        GetLogger().Write(kLogError, L"%s Can't find requested disk %u", kCanBackup, request.disk_number);
        errors.push_back(L"Backup cannot proceed. Failed to find any information about requested disk " +
                         number + L".");
        return false;
    }
    Lines reasons;
    if (!disk->can_backup(reasons)) {
        errors.push_back(L"Disk " + number + L" cannot be backed up because:");
        Append(errors, reasons);
        return false;
    }
    if (!disk->HasPartitionAtOffset(request.partition_offset)) {
        errors.push_back(L"Disk " + number +
                         L" cannot be backed up because there is no requested partition at offset " +
                         DecimalText(request.partition_offset));
        return false;
    }
    return true;
}

Lines IdentifiersOf(const bmr_common::VolumeManager& volume_manager) {
    Lines identifiers;
    for (const bmr_common::VolumePtr& volume : volume_manager.volumes()) {
        // A device volume without a GUID is identified by its device name.
        identifiers.push_back(volume->volume_guid().empty() ? volume->device_name() : volume->volume_guid());
    }
    return identifiers;
}

}  // namespace

bool InfoGrabber::CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                            const bmr_common::VolumeManager& volume_manager,
                            const bmr_common::DeviceManager& device_manager, bool all_volumes) {
    return Traced(kCanBackup, [&] {
        Lines volume_errors;
        const bool volumes_ok =
            CanBackup(all_volumes ? IdentifiersOf(volume_manager) : volumes, volume_manager, volume_errors);
        if (!volumes_ok) {
            LogLines(volume_errors);
        }
        Lines disk_errors;
        const bool disks_ok = CanBackup(disks, device_manager, disk_errors);
        // Only if a volume failed too: compatibility C36
        if (!volumes_ok) {
            LogLines(disk_errors);
        }
        return volumes_ok && disks_ok;
    });
}

bool InfoGrabber::CanBackup(const std::vector<RequestedDisk>& disks,
                            const bmr_common::DeviceManager& device_manager,
                            std::vector<std::wstring>& errors) {
    bool result = true;
    for (const RequestedDisk& request : disks) {
        result = CheckDisk(request, device_manager, errors) && result;
    }
    return result;
}

bool InfoGrabber::CanBackup(const std::vector<std::wstring>& volumes,
                            const bmr_common::VolumeManager& volume_manager,
                            std::vector<std::wstring>& errors) {
    errors.clear();
    bool result = true;
    for (const std::wstring& name : volumes) {
        const bmr_common::VolumePtr volume = volume_manager.GetVolume(name);
        if (!volume) {
            errors.push_back(L"Backup cannot proceed. Failed to find any information about volume " + name +
                             L".");
            result = false;
        } else if (!volume->found_fit_for_backup()) {
            errors.push_back(RefusalOf(name, *volume));
            Append(errors, volume->backup_failure_reasons());
            result = false;
        }
    }
    return result;
}

void InfoGrabber::CaptureInfo(std::uint32_t buffer_size, char* buffer, std::uint32_t* required_size,
                              std::uint32_t* status) {
    const boost::shared_ptr<EnvInfo> environment = GetEnvInfo();
    if (!environment) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: Cannot get BMREnvInfo");
    }
    bmr_common::COMEnabler com;
    if (!com.InitializeCOM(L"orvane::InfoGrabber::CaptureInfo")) {
        throw GrabberException(L"Failed to initialize COM");
    }
    CMSXmlDoc document;
    CMSXmlNode root = NewDocument(document);
    WriteEnvironment(root, *environment);
    const std::string text = DocumentText(root);
    if (text.empty()) {
        throw GrabberException(L"InfoGrabber::CaptureInfo: XML is invalid");
    }
    CopyDocument(text, buffer_size, buffer, required_size, status);
}

}  // namespace orvane

#pragma once

#include "capture/environment/env_info.h"
#include "common/disk/device_manager.h"
#include "common/volume/volume_manager.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

// A partition of a physical disk that is to be backed up by itself.
struct RequestedDisk {
    std::uint32_t disk_number = 0;
    std::int64_t partition_offset = 0;  // bytes
};

// For one call of an export: collects the machine's environment, judges whether what the host selected can be
// backed up, and writes the environment document. Nothing is kept between calls. One thread.
class InfoGrabber {
public:
    InfoGrabber() = default;
    virtual ~InfoGrabber() = default;
    InfoGrabber(const InfoGrabber&) = delete;
    InfoGrabber& operator=(const InfoGrabber&) = delete;

    // Collects the environment; false after a line in the log.
    virtual bool ObtainInformation() = 0;

    // The common check: the volumes (all that the manager holds where `all_volumes` is true) and the disks.
    // Logs the reasons at level 2, those of the disks only where a volume failed too.
    virtual bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                           const bmr_common::VolumeManager& volume_manager,
                           const bmr_common::DeviceManager& device_manager, bool all_volumes);
    // Its disk half; appends its report to `errors`.
    virtual bool CanBackup(const std::vector<RequestedDisk>& disks,
                           const bmr_common::DeviceManager& device_manager,
                           std::vector<std::wstring>& errors);
    // Its volume half; replaces `errors` by its report.
    virtual bool CanBackup(const std::vector<std::wstring>& volumes,
                           const bmr_common::VolumeManager& volume_manager,
                           std::vector<std::wstring>& errors);
    // The check of the environment that was obtained.
    virtual bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                           bool all_volumes) = 0;

    // The record that CaptureInfo writes.
    virtual boost::shared_ptr<EnvInfo> GetEnvInfo() = 0;
    virtual void DumpVolumeInfo() = 0;

    // Writes the document as text in the ANSI code page into `buffer` (the caller's, `buffer_size` bytes)
    // when it fits, with status ORVANE_SUCCESS; else leaves it untouched, with ORVANE_BUFFER_TOO_SMALL.
    // Stores the document's length in bytes through `required_size` unless that is null. Throws
    // GrabberException or _com_error.
    virtual void CaptureInfo(std::uint32_t buffer_size, char* buffer, std::uint32_t* required_size,
                             std::uint32_t* status);
};

using InfoGrabberPtr = boost::shared_ptr<InfoGrabber>;

}  // namespace orvane

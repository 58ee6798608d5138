#pragma once

#include "capture/environment/env_info.h"
#include "common/disk/device_manager.h"
#include "common/volume/volume_manager.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

// A partition of a physical disk, requested for backup by its disk and offset.
struct RequestedDisk {
    std::uint32_t disk_number = 0;
    std::int64_t partition_offset = 0;  // bytes
};

// Serves one call of an export: collects the machine's environment, checks whether the selection can be
// backed up, and writes the environment document. Keeps nothing between calls. Use it on one thread only.
class InfoGrabber {
public:
    InfoGrabber() = default;
    virtual ~InfoGrabber() = default;
    InfoGrabber(const InfoGrabber&) = delete;
    InfoGrabber& operator=(const InfoGrabber&) = delete;

    // Collects the environment. On failure logs the reason and returns false.
    virtual bool ObtainInformation() = 0;

    // Checks the volumes (all volumes of the manager if `all_volumes`) and the disks. Logs the reasons for a
    // refusal as errors; those of the disks only if a volume failed too.
    virtual bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                           const bmr_common::VolumeManager& volume_manager,
                           const bmr_common::DeviceManager& device_manager, bool all_volumes);
    // Checks the disks only. Appends the reasons to `errors`.
    virtual bool CanBackup(const std::vector<RequestedDisk>& disks,
                           const bmr_common::DeviceManager& device_manager,
                           std::vector<std::wstring>& errors);
    // Checks the volumes only. Replaces the content of `errors` by the reasons.
    virtual bool CanBackup(const std::vector<std::wstring>& volumes,
                           const bmr_common::VolumeManager& volume_manager,
                           std::vector<std::wstring>& errors);
    // Checks the volumes and the disks in the collected environment.
    virtual bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                           bool all_volumes) = 0;

    // The record that CaptureInfo writes.
    virtual boost::shared_ptr<EnvInfo> GetEnvInfo() = 0;
    virtual void DumpVolumeInfo() = 0;

    // Writes the document as text in the ANSI code page to `buffer` (owned by the caller, `buffer_size`
    // bytes) and sets the status ORVANE_SUCCESS. If it does not fit, leaves the buffer unchanged and sets
    // ORVANE_BUFFER_TOO_SMALL. In both cases stores the document's length in bytes in `required_size`, which
    // may be null. Throws GrabberException or _com_error.
    virtual void CaptureInfo(std::uint32_t buffer_size, char* buffer, std::uint32_t* required_size,
                             std::uint32_t* status);
};

using InfoGrabberPtr = boost::shared_ptr<InfoGrabber>;

}  // namespace orvane

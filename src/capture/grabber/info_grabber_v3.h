#pragma once

#include "capture/environment/env_info_v3.h"
#include "capture/grabber/info_grabber.h"

namespace orvane {

// Format 3: the disk model writes its own elements. CaptureInfo needs COM initialised on the calling thread.
class InfoGrabberV3 : public InfoGrabber {
public:
    InfoGrabberV3();
    // Uses a record that was filled elsewhere. An empty pointer makes CaptureInfo fail.
    explicit InfoGrabberV3(boost::shared_ptr<EnvInfoV3> environment);

    using InfoGrabber::CanBackup;

    bool ObtainInformation() override;
    bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                   bool all_volumes) override;
    // Always returns an empty pointer.
    boost::shared_ptr<EnvInfo> GetEnvInfo() override;
    void DumpVolumeInfo() override;
    void CaptureInfo(std::uint32_t buffer_size, char* buffer, std::uint32_t* required_size,
                     std::uint32_t* status) override;

private:
    bool Collect();
    bool SetVolumeInfoGUID() const;

    boost::shared_ptr<EnvInfoV3> environment_;
};

}  // namespace orvane

#pragma once

#include "capture/grabber/info_grabber.h"

namespace orvane {

// Format 1: the flat enumerator fills the flat record. No volume is checked: compatibility C117
class InfoGrabberV1 : public InfoGrabber {
public:
    explicit InfoGrabberV1(boost::shared_ptr<EnvInfo> environment);

    using InfoGrabber::CanBackup;

    bool ObtainInformation() override;
    // Always true.
    bool CanBackup(const std::vector<std::wstring>& volumes, const std::vector<RequestedDisk>& disks,
                   bool all_volumes) override;
    boost::shared_ptr<EnvInfo> GetEnvInfo() override;
    // Does nothing.
    void DumpVolumeInfo() override;

private:
    boost::shared_ptr<EnvInfo> environment_;
};

}  // namespace orvane

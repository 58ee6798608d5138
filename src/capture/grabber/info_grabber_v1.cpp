#include "capture/grabber/info_grabber_v1.h"

#include "capture/environment/init_env_info.h"

#include <utility>

namespace orvane {

InfoGrabberV1::InfoGrabberV1(boost::shared_ptr<EnvInfo> environment) : environment_(std::move(environment)) {}

bool InfoGrabberV1::ObtainInformation() {
    return InitEnvInfo(*environment_);
}

bool InfoGrabberV1::CanBackup(const std::vector<std::wstring>& /*volumes*/,
                              const std::vector<RequestedDisk>& /*disks*/, bool /*all_volumes*/) {
    return true;
}

boost::shared_ptr<EnvInfo> InfoGrabberV1::GetEnvInfo() {
    return environment_;
}

void InfoGrabberV1::DumpVolumeInfo() {}

}  // namespace orvane

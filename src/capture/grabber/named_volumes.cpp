#include "capture/grabber/named_volumes.h"

#include "common/platform/guid.h"

namespace orvane {

bool NameVolumes(const bmr_common::VolumeManager& volume_manager, std::vector<NamedVolume>& volumes) {
    for (const bmr_common::VolumePtr& volume : volume_manager.volumes()) {
        GUID guid{};
        if (!CreateGuid(guid)) {
            return false;
        }
        volumes.emplace_back(volume, GuidText(guid));
    }
    return true;
}

}  // namespace orvane

#pragma once

#include "capture/environment/env_info.h"
#include "common/disk/device_manager.h"
#include "common/volume/volume_manager.h"

// The record of format 3, with the disk model instead of the tables.
struct EnvInfoV3 : SystemSections {
    bmr_common::DeviceManager device_manager;
    bmr_common::VolumeManager volume_manager;
};

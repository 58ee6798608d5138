#pragma once

#include "machine/recorder/observe/observations.h"

#include <string>
#include <vector>

namespace recorder {

// A volume as its names show it.
struct NamedVolume {
    std::wstring device;               // "\Device\HarddiskVolume1"
    std::wstring link_target;          // the device of its links, if that is another one
    std::vector<std::wstring> guids;   // "{...}", the first one is its own
    std::vector<std::wstring> drives;  // "C:"
    std::vector<std::wstring> forms;   // all paths of the device, without a backslash at the end
    bool linked = true;                // its GUIDs are links
};

// The volumes that the volume search lists, in its order; then the others, in the order of \Device.
std::vector<NamedVolume> NamedVolumes(const Observations& observations);

}  // namespace recorder

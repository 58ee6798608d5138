#pragma once

#include "machine/description/description.h"

#include <cstddef>

namespace bench {

// GPT disks with four partitions each, or more if the volumes need them, and volumes spread evenly over them.
// A volume has `mount_points` mount points and `aliases` additional GUIDs. The first volume is C:, the system
// volume.
struct Size {
    std::size_t disks = 1;
    std::size_t volumes = 4;
    std::size_t mount_points = 1;
    std::size_t aliases = 0;
};

machine::Description MachineOf(const Size& size);

}  // namespace bench

#pragma once

#include "machine/description.h"

#include <cstddef>

namespace bench {

// GPT disks of four partitions each, of more where the volumes need them, and volumes that lie on them,
// evenly. A volume has `mount_points` mount points and `aliases` further GUIDs. The first volume is C:, the
// system's.
struct Size {
    std::size_t disks = 1;
    std::size_t volumes = 4;
    std::size_t mount_points = 1;
    std::size_t aliases = 0;
};

machine::Description MachineOf(const Size& size);

}  // namespace bench

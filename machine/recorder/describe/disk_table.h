#pragma once

#include "machine/description/description.h"
#include "machine/recorder/observe/observations.h"

#include <string>

namespace recorder {

// Fills the style and the partitions of the disk with this path. Its geometry must be there. The layout tells
// them, or else the older layout control, or else the volumes on the disk.
void DescribeTable(const Observations& observations, const std::wstring& path, machine::Disk& disk);

}  // namespace recorder

#pragma once

#include "documents/model/disk.h"

#include <vector>

namespace documents {

// The parts of the gaps that no partition takes, by offset. The rows of an MBR disk follow its slots: where
// these are not in the order of the offsets, a gap of the document covers partitions of later slots, and gaps
// cover each other.
std::vector<Gap> FreeOf(std::vector<Gap> gaps, const std::vector<Partition>& partitions);

}  // namespace documents

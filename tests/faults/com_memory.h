#pragma once

#include <cstdint>

namespace faults {

// Blocks of COM's allocator that live in this process: BSTRs above all. Counted from the first call on,
// which must come before any COM initialisation.
std::int64_t LiveComBlocks();

}  // namespace faults

#pragma once

#include <cstdint>

namespace faults {

// The number of live blocks of COM's allocator in this process, most of them BSTRs. The first call starts the
// counting and must come before any COM initialisation.
std::int64_t LiveComBlocks();

}  // namespace faults

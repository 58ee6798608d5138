#pragma once

#include "common/windows.h"

#include <cstddef>

namespace bench {

// Meters the module's own memory from now on. There is one meter, so only one module at a time.
void MeterMemoryOf(HMODULE module);

// The peak of the bytes that the module held since the previous call, minus the bytes that it held at that
// call.
std::size_t PeakBytes();

}  // namespace bench

#pragma once

#include "common/windows.h"

#include <cstddef>

namespace bench {

// From now on the module's own memory is measured. One module at a time: there is one meter.
void MeterMemoryOf(HMODULE module);

// The most bytes that the module has held since the call before, beyond what it held then.
std::size_t PeakBytes();

}  // namespace bench

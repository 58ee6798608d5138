#pragma once

#include "bench/report.h"
#include "tools/orvane/orvane_library.h"

#include <cstddef>

namespace bench {

// The sections of the table. `effort` multiplies how often each figure is measured.

// The file, and the memory that it takes in a fresh process.
void MeasureSize(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// Captures against what the platform itself costs.
void MeasureFloor(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// A traced call against formatting and converting its lines; the dumps.
void MeasureLogging(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// More disks, more volumes: time and memory.
void MeasureGrowth(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// A thousand captures in one process.
void MeasureRepetition(const host::OrvaneLibrary& library, std::size_t effort, Report& report);

}  // namespace bench

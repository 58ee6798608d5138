#pragma once

#include "bench/report.h"
#include "tools/orvane/orvane_library.h"

#include <cstddef>
#include <filesystem>

namespace bench {

// The sections of the table. `effort` multiplies the number of measurements.

// The size of the file, and the memory that it takes in a fresh process.
void MeasureSize(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// Captures compared with the cost of the platform itself.
void MeasureFloor(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// A traced call compared with formatting and converting its lines; the speed of the dumps.
void MeasureLogging(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// Time and memory with more disks and more volumes.
void MeasureGrowth(const host::OrvaneLibrary& library, std::size_t effort, Report& report);
// A thousand captures in one process.
void MeasureRepetition(const host::OrvaneLibrary& library, std::size_t effort, Report& report);

// Writes the documents that bench/documents reads: "1000-format2.xml" and "10000-format2.xml", by the number
// of volumes, and the same in format 3.
void WriteDocuments(const host::OrvaneLibrary& library, const std::filesystem::path& folder);

}  // namespace bench

// The library's size, and whether a thousand captures leave it as it was.

#include "bench/captures.h"
#include "bench/memory_meter.h"
#include "bench/sections.h"
#include "bench/timing.h"
#include "machine/session.h"

#include <filesystem>

namespace bench {

void MeasureFootprint(const host::OrvaneLibrary& library, std::size_t /*effort*/, Report& report) {
    constexpr int kCaptures = 1000;
    constexpr int kPart = 100;
    MeterMemoryOf(library.module());
    report.Section("Size, and a thousand captures in one process");
    report.Figure("the DLL", static_cast<double>(std::filesystem::file_size(ORVANE_DLL_PATH)) / 1024, "KiB");
    machine::Session session(
        machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/uefi-workstation.json"));
    session.simulation().calls().SetKept(false);
    Captures captures(library, 2);
    const auto run = [&](int count) {
        return SecondsOf([&] {
            for (int i = 0; i < count; ++i) {
                captures.Run();
            }
        });
    };
    PeakBytes();
    const double first = run(kPart);
    const auto first_bytes = static_cast<double>(PeakBytes());
    run(kCaptures - 2 * kPart);
    PeakBytes();
    const double last = run(kPart);
    const auto last_bytes = static_cast<double>(PeakBytes());
    report.Figure("memory that a capture of the workstation takes", first_bytes / 1024, "KiB");
    report.Ratio("the last hundred in times of the first, time", last / first, 1.10);
    report.Ratio("the last hundred in times of the first, memory", last_bytes / first_bytes, 1.01);
}

}  // namespace bench

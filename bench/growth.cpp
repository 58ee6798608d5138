// Measures whether time and memory grow linearly with the number of objects.

#include "bench/captures.h"
#include "bench/machines.h"
#include "bench/memory_meter.h"
#include "bench/scratch_copy.h"
#include "bench/sections.h"
#include "bench/timing.h"
#include "machine/session/session.h"

#include <string>
#include <utility>
#include <vector>

namespace bench {

namespace {

// Allows 10 % more than linear growth: ten times as many objects may take eleven times as long.
constexpr double kSlack = 1.1;

// A busy machine can be slow for seconds, so each step is measured for longer.
constexpr double kLeastSeconds = 8;

enum class Selection { kNothing, kEverything };

std::wstring EveryVolume(const machine::Description& machine) {
    std::wstring list;
    for (const machine::Volume& volume : machine.volumes) {
        list += L"\\\\?\\Volume" + volume.guid + L"\\" + L'\0';
    }
    return list + L'\0';
}

// The library whose time is measured, and a copy whose memory is metered, because metering takes time.
struct Libraries {
    const host::OrvaneLibrary& timed;
    const host::OrvaneLibrary& metered;
};

// Simulates the machine for the lifetime of the object, with all or none of its volumes selected.
class SizedMachine {
public:
    SizedMachine(const host::OrvaneLibrary& library, const machine::Description& description,
                 Selection selection)
        : library_(library), session_(description) {
        session_.simulation().calls().SetKept(false);
        const std::wstring list =
            selection == Selection::kEverything ? EveryVolume(description) : std::wstring(1, L'\0');
        library_.SetupSelectedVolumesList(list.data(), list.size());
    }
    ~SizedMachine() { library_.SetupSelectedVolumesList(nullptr, 0); }
    SizedMachine(const SizedMachine&) = delete;
    SizedMachine& operator=(const SizedMachine&) = delete;

private:
    const host::OrvaneLibrary& library_;
    machine::Session session_;
};

// The mean of `count` captures. The minimum would favour short captures, which are more likely to run
// undisturbed on a busy machine.
double SecondsOfCapture(const host::OrvaneLibrary& library, const machine::Description& description,
                        std::uint32_t format, Selection selection, std::size_t count) {
    const SizedMachine machine(library, description, selection);
    Captures captures(library, format);
    const double seconds = SecondsOf([&] {
        for (std::size_t i = 0; i < count; ++i) {
            captures.Run();
        }
    });
    return seconds / static_cast<double>(count);
}

// The peak of the library's own memory during a capture, in bytes.
double BytesOfCapture(const host::OrvaneLibrary& library, const machine::Description& description,
                      std::uint32_t format, Selection selection) {
    const SizedMachine machine(library, description, selection);
    Captures captures(library, format);
    PeakBytes();
    captures.Run();
    return static_cast<double>(PeakBytes());
}

struct Series {
    std::string name;
    Size small;
    Size large;
    std::size_t times;    // size of `large` relative to `small`
    std::size_t objects;  // number of objects in `large`
    Selection selection = Selection::kNothing;
};

void MeasureSeries(const Libraries& libraries, const Series& series, std::size_t effort, Report& report) {
    const machine::Description small = MachineOf(series.small);
    const machine::Description large = MachineOf(series.large);
    const auto objects = static_cast<double>(series.objects);
    for (const std::uint32_t format : {2U, 3U}) {
        std::vector<double> seconds;
        std::vector<double> times;
        const auto measure = [&] {
            // Captures the small machine so many times that it takes about as long as one capture of the
            // large machine.
            const double few =
                SecondsOfCapture(libraries.timed, small, format, series.selection, series.times);
            const double many = SecondsOfCapture(libraries.timed, large, format, series.selection, 1);
            seconds.push_back(many);
            times.push_back(many / few);
        };
        double spent = 0;
        while (times.size() < 4 * effort + 1 || spent < kLeastSeconds * static_cast<double>(effort)) {
            spent += SecondsOf(measure);
        }
        const double few_bytes = BytesOfCapture(libraries.metered, small, format, series.selection);
        const double many_bytes = BytesOfCapture(libraries.metered, large, format, series.selection);
        const double limit = static_cast<double>(series.times) * kSlack;
        const std::string row = series.name + ", format " + std::to_string(format);
        report.Ratio(row + ", time", MedianOf(std::move(times)), limit);
        report.Ratio(row + ", memory", many_bytes / few_bytes, limit);
        report.Figure(row + ", time of each", MedianOf(std::move(seconds)) * 1e6 / objects, "us");
        report.Figure(row + ", memory of each", many_bytes / objects, "bytes");
    }
}

}  // namespace

void MeasureGrowth(const host::OrvaneLibrary& library, std::size_t effort, Report& report) {
    report.Section("More objects: the larger machine in times of the smaller one");
    const ScratchCopy copy;
    const host::OrvaneLibrary metered(copy.file());
    PutOnSimulation(metered);
    MeterMemoryOf(metered.module());
    const Libraries libraries{library, metered};
    const Series kSeries[] = {
        {"1 to 16 disks", {1, 4, 1, 0}, {16, 64, 1, 0}, 16, 16},
        {"4 to 64 disks", {4, 16, 1, 0}, {64, 256, 1, 0}, 16, 64},
        {"16 to 256 disks", {16, 64, 1, 0}, {256, 1024, 1, 0}, 16, 256},
        {"256 to 1,024 disks", {256, 1024, 1, 0}, {1024, 4096, 1, 0}, 4, 1024},
        {"10 to 100 volumes", {1, 10, 1, 0}, {10, 100, 1, 0}, 10, 100},
        {"100 to 1,000 volumes", {10, 100, 1, 0}, {100, 1000, 1, 0}, 10, 1000},
        {"1,000 to 10,000 volumes", {16, 1000, 1, 0}, {160, 10'000, 1, 0}, 10, 10'000},
        {"1,000 to 10,000 volumes, all selected",
         {16, 1000, 1, 0},
         {160, 10'000, 1, 0},
         10,
         10'000,
         Selection::kEverything},
        {"1,000 to 10,000 volumes with 2 aliases", {16, 1000, 1, 2}, {160, 10'000, 1, 2}, 10, 10'000},
        {"1,000 to 10,000 mount points on a volume", {1, 1, 1000, 0}, {1, 1, 10'000, 0}, 10, 10'000},
    };
    for (const Series& series : kSeries) {
        MeasureSeries(libraries, series, effort, report);
    }
}

}  // namespace bench

// More of everything: whether time and memory grow as the number does.

#include "bench/captures.h"
#include "bench/machines.h"
#include "bench/memory_meter.h"
#include "bench/sections.h"
#include "bench/timing.h"
#include "machine/session.h"

#include <algorithm>
#include <string>
#include <vector>

namespace bench {

namespace {

// Ten times as many may take eleven times as long.
constexpr double kSlack = 1.1;

enum class Selection { kNothing, kEverything };

std::wstring EveryVolume(const machine::Description& machine) {
    std::wstring list;
    for (const machine::Volume& volume : machine.volumes) {
        list += L"\\\\?\\Volume" + volume.guid + L"\\" + L'\0';
    }
    return list + L'\0';
}

struct Cost {
    double seconds = 0;
    double bytes = 0;  // the library's own
};

// One machine, captured a few times: the fastest, and the most memory.
Cost CostOf(const host::OrvaneLibrary& library, const machine::Description& description, std::uint32_t format,
            Selection selection, std::size_t rounds) {
    machine::Session session(description);
    session.simulation().calls().SetKept(false);
    const std::wstring list =
        selection == Selection::kEverything ? EveryVolume(description) : std::wstring(1, L'\0');
    library.SetupSelectedVolumesList(list.data(), list.size());
    Captures captures(library, format);
    PeakBytes();
    Cost cost;
    cost.seconds = SecondsOf([&] { captures.Run(); });
    cost.bytes = static_cast<double>(PeakBytes());
    for (std::size_t i = 1; i < rounds; ++i) {
        cost.seconds = std::min(cost.seconds, SecondsOf([&] { captures.Run(); }));
    }
    library.SetupSelectedVolumesList(nullptr, 0);
    return cost;
}

struct Series {
    std::string name;
    Size small;
    Size large;
    double times;         // as many
    std::size_t objects;  // of the large one
    Selection selection = Selection::kNothing;
};

void MeasureSeries(const host::OrvaneLibrary& library, const Series& series, std::size_t effort,
                   Report& report) {
    const machine::Description small = MachineOf(series.small);
    const machine::Description large = MachineOf(series.large);
    for (const std::uint32_t format : {2U, 3U}) {
        std::vector<double> seconds;
        double bytes = 0;
        double growth = 0;
        for (std::size_t i = 0; i < 2 * effort + 1; ++i) {
            const Cost few = CostOf(library, small, format, series.selection, 5);
            const Cost many = CostOf(library, large, format, series.selection, 3);
            seconds.push_back(many.seconds / few.seconds);
            bytes = many.bytes;
            growth = many.bytes / few.bytes;
        }
        std::nth_element(seconds.begin(), seconds.begin() + static_cast<std::ptrdiff_t>(effort),
                         seconds.end());
        const std::string row = series.name + ", format " + std::to_string(format);
        report.Ratio(row + ", time", seconds[effort], series.times * kSlack);
        report.Ratio(row + ", memory", growth, series.times * kSlack);
        report.Figure(row + ", memory of each", bytes / static_cast<double>(series.objects), "bytes");
    }
}

}  // namespace

void MeasureGrowth(const host::OrvaneLibrary& library, std::size_t effort, Report& report) {
    report.Section("More objects: the larger machine in times of the smaller one");
    MeterMemoryOf(library.module());
    const Series kSeries[] = {
        {"4 to 16 disks", {4, 16, 1, 0}, {16, 64, 1, 0}, 4, 16},
        {"16 to 64 disks", {16, 64, 1, 0}, {64, 256, 1, 0}, 4, 64},
        {"64 to 256 disks", {64, 256, 1, 0}, {256, 1024, 1, 0}, 4, 256},
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
        MeasureSeries(library, series, effort, report);
    }
}

}  // namespace bench

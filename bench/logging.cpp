// Measures the cost of the log.

#include "bench/captures.h"
#include "bench/sections.h"
#include "bench/timing.h"
#include "machine/session/session.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace bench {

namespace {

constexpr int kCalls = 2'000;  // per round

// Formats, converts and delivers the two lines of a traced call.
void FormatTwoLines() {
    for (const wchar_t* const format : {L"Entering function %s line %d", L"Leaving function %s line %d"}) {
        std::array<wchar_t, 255> line{};
        std::array<char, 255> narrow{};
        std::size_t length = 0;
        _snwprintf(line.data(), line.size() - 1, format, L"SetXmlFormat", 36);
        wcstombs_s(&length, narrow.data(), narrow.size(), line.data(), _TRUNCATE);
        IgnoreLog(0, narrow.data());
    }
}

std::size_t lines = 0;

void CountLine(std::int32_t /*level*/, const char* /*text*/) {
    ++lines;
}

double LinesPerSecond(const host::OrvaneLibrary& library, void (*dump)(), std::size_t rounds) {
    library.SetEventFunc(&CountLine);
    lines = 0;
    const double seconds = SecondsOf([&] {
        for (std::size_t i = 0; i < rounds; ++i) {
            dump();
        }
    });
    library.SetEventFunc(nullptr);
    return static_cast<double>(lines) / seconds;
}

}  // namespace

void MeasureLogging(const host::OrvaneLibrary& library, std::size_t effort, Report& report) {
    constexpr double kGoal = 1.25;
    report.Section("The log");
    library.SetEventFunc(&IgnoreLog);
    const auto traced = [&] {
        for (int i = 0; i < kCalls; ++i) {
            library.SetXmlFormat(2);
        }
    };
    const auto formatted = [] {
        for (int i = 0; i < kCalls; ++i) {
            FormatTwoLines();
        }
    };
    report.Ratio("a traced call, in times of formatting its two lines",
                 RatioOf(traced, formatted, 20 * effort), kGoal);
    library.SetEventFunc(nullptr);
    machine::Session session(
        machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/uefi-workstation"));
    session.simulation().calls().SetKept(false);
    const std::size_t rounds = 100 * effort;
    report.Figure("lines of WMIDumpInfo", LinesPerSecond(library, library.WMIDumpInfo, rounds) / 1000,
                  "thousand a second");
    report.Figure("lines of DiskDumpInfo", LinesPerSecond(library, library.DiskDumpInfo, rounds) / 1000,
                  "thousand a second");
    report.Figure("lines of VolumeDumpInfo", LinesPerSecond(library, library.VolumeDumpInfo, rounds) / 1000,
                  "thousand a second");
}

}  // namespace bench

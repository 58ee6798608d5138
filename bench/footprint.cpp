// Measures the size of the library, and whether its time and memory stay the same over thousands of captures.

#include "bench/captures.h"
#include "bench/memory_meter.h"
#include "bench/scratch_copy.h"
#include "bench/sections.h"
#include "bench/timing.h"
#include "machine/session/session.h"

#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench {

namespace {

constexpr double kKibibyte = 1024;

struct Imports {
    std::size_t libraries = 0;
    std::size_t functions = 0;
};

Imports ImportsOf(HMODULE module) {
    const auto* const base = reinterpret_cast<const unsigned char*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD place = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    Imports imports;
    for (const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + place);
         library->FirstThunk != 0; ++library) {
        ++imports.libraries;
        for (const auto* function = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->FirstThunk);
             function->u1.Function != 0; ++function) {
            ++imports.functions;
        }
    }
    return imports;
}

// The private memory of the process in bytes: committed pages that map no file.
double PrivateBytes() {
    double bytes = 0;
    MEMORY_BASIC_INFORMATION pages{};
    for (const char* address = nullptr; VirtualQuery(address, &pages, sizeof(pages)) != 0;
         address = static_cast<const char*>(pages.BaseAddress) + pages.RegionSize) {
        if (pages.State == MEM_COMMIT && pages.Type == MEM_PRIVATE) {
            bytes += static_cast<double>(pages.RegionSize);
        }
    }
    return bytes;
}

machine::Description Workstation() {
    return machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/uefi-workstation");
}

}  // namespace

void MeasureSize(const host::OrvaneLibrary& /*library*/, std::size_t /*effort*/, Report& report) {
    report.Section("Size");
    const machine::Session session(Workstation());
    const ScratchCopy copy;
    const double before = PrivateBytes();
    const host::OrvaneLibrary library(copy.file());
    const double loaded = PrivateBytes();
    const Imports imports = ImportsOf(library.module());
    PutOnSimulation(library);
    std::uint32_t length = 0;
    library.SetXmlFormat(2);
    if (library.CaptureSystemRestorePointInfo(nullptr, 0, &length) != ORVANE_BUFFER_TOO_SMALL) {
        throw std::runtime_error("the workstation cannot be captured");
    }
    const double captured = PrivateBytes();
    report.Figure("the DLL", static_cast<double>(std::filesystem::file_size(copy.file())) / kKibibyte, "KiB");
    report.Figure("libraries that it imports from", static_cast<double>(imports.libraries), "");
    report.Figure("functions that it imports", static_cast<double>(imports.functions), "");
    report.Figure("private memory, loaded", (loaded - before) / kKibibyte, "KiB");
    report.Figure("private memory, after its first capture", (captured - before) / kKibibyte, "KiB");
}

// Repeats the thousand captures and takes the median, because other programs may slow down a hundred
// captures.
void MeasureRepetition(const host::OrvaneLibrary& library, std::size_t effort, Report& report) {
    constexpr int kCaptures = 1000;
    constexpr int kPart = 100;
    report.Section("A thousand captures in one process");
    machine::Session session(Workstation());
    session.simulation().calls().SetKept(false);
    MeterMemoryOf(library.module());
    Captures captures(library, 2);
    const auto run = [&](int count) {
        return SecondsOf([&] {
            for (int i = 0; i < count; ++i) {
                captures.Run();
            }
        });
    };
    std::vector<double> time;
    double first_bytes = 0;
    PeakBytes();
    for (std::size_t i = 0; i < 10 * effort + 1; ++i) {
        const double first = run(kPart);
        if (i == 0) {
            first_bytes = static_cast<double>(PeakBytes());
        }
        run(kCaptures - 2 * kPart);
        time.push_back(run(kPart) / first);
    }
    // The peak since the first hundred captures, beyond what was held then. Leaks of thousands of captures
    // add up in it.
    const auto later_bytes = static_cast<double>(PeakBytes());
    report.Figure("memory that a capture of the workstation takes", first_bytes / kKibibyte, "KiB");
    report.Ratio("the last hundred in times of the first, time", MedianOf(std::move(time)), 1.10);
    report.Ratio("all after the first hundred in times of those, memory", later_bytes / first_bytes, 1.01);
}

}  // namespace bench

// Prints the table of the benchmarks. Exit code: 0 if every goal is met, 1 if not, 2 if a measurement fails.

#include "bench/captures.h"
#include "bench/sections.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>

namespace {

struct Section {
    const char* name;
    void (*measure)(const host::OrvaneLibrary& library, std::size_t effort, bench::Report& report);
};

// The size is first because it needs a fresh process. The repetition is last because it starts metering the
// library's memory, which takes time from then on.
constexpr Section kSections[] = {{"size", &bench::MeasureSize},
                                 {"floor", &bench::MeasureFloor},
                                 {"logging", &bench::MeasureLogging},
                                 {"growth", &bench::MeasureGrowth},
                                 {"repetition", &bench::MeasureRepetition}};

}  // namespace

int main(int count, char** arguments) {
    std::string only;
    std::string documents;
    std::size_t effort = 1;
    CLI::App app("Benchmarks: ratios between things that are measured in the same run.", "bench");
    app.add_option("--section", only, "size, floor, logging, growth or repetition alone");
    app.add_option("--effort", effort, "How many times as often each figure is measured")
        ->check(CLI::PositiveNumber);
    app.add_option("--documents", documents, "Only write the documents for bench_documents into this folder");
    CLI11_PARSE(app, count, arguments);
    try {
        const host::OrvaneLibrary library(ORVANE_DLL_PATH);
        bench::PutOnSimulation(library);
        if (!documents.empty()) {
            bench::WriteDocuments(library, documents);
            return 0;
        }
        bench::Report report;
        for (const Section& section : kSections) {
            if (only.empty() || only == section.name) {
                section.measure(library, effort, report);
            }
        }
        std::printf("\n%s\n", report.met()
                                  ? "All goals are met."
                                  : (std::to_string(report.missed()) + " goals are missed.").c_str());
        return report.met() ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 2;
    }
}

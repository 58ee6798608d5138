// Runs one part for one machine and one entry point. Prints failures as lines, and at the end a line with the
// counts, "RESULT {...}". Exit codes: 0 no failure, 1 failures, 2 usage or set-up error, 86 a case hung, 87 a
// case crashed.

#include "faults/case_runner.h"
#include "faults/com_memory.h"
#include "faults/watch_case.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>

namespace {

using faults::Choice;

constexpr int kFailures = 1;
constexpr int kUsage = 2;
constexpr unsigned kCaseSeconds = 60;
constexpr unsigned kLongCaseSeconds = 900;  // a part that is a single case

machine::Description Describe(const Choice& choice) {
    return machine::LoadDescription(std::filesystem::path(choice.machine));
}

void RunPart(faults::CaseRunner& runner) {
    const Choice& choice = runner.choice();
    const std::filesystem::path file = ORVANE_DLL_PATH;
    if (choice.part == "cold") {
        faults::ColdStart(runner, file, Describe(choice));
        return;
    }
    if (choice.part == "reload") {
        faults::Reload(runner, file, Describe(choice));
        return;
    }
    const faults::Library library(file);
    if (choice.part == "long") {
        faults::LongLists(runner, library);
        return;
    }
    faults::Bench bench(library, faults::FindEntryPoint(choice.entry), Describe(choice));
    if (choice.part == "sweep") {
        faults::Sweep(runner, bench);
    } else if (choice.part == "lies") {
        faults::Lies(runner, bench);
    } else {
        faults::Changes(runner, bench);
    }
}

void AddOptions(CLI::App& app, Choice& choice) {
    app.add_option("--machine", choice.machine, "Description of the machine (JSON)");
    app.add_option("--entry", choice.entry, "capture1, capture2, capture3, wmi, disks, volumes, firmware");
    app.add_option("--part", choice.part)
        ->check(CLI::IsMember({"sweep", "lies", "changes", "cold", "reload", "long"}));
    app.add_option("--call", choice.call, "Only this call: 117, import:5, dom:12, alloc:900");
    app.add_option("--fault", choice.fault, "Only this fault: device-gone");
    app.add_flag_callback(
        "--once", [&] { choice.from_there_on = false; }, "Only the call itself fails");
    app.add_flag_callback(
        "--from-there-on", [&] { choice.from_there_on = true; }, "The call and all later calls fail");
    app.add_option("--seed", choice.seed, "The seed of the random values");
    app.add_option("--stride", choice.stride, "Run one case in this many")->check(CLI::PositiveNumber);
    app.add_option("--loads", choice.loads, "How often the library is loaded again");
    app.add_option("--from", choice.from, "The first case, as printed after a crash");
}

}  // namespace

int main(int count, char** arguments) {
    Choice choice;
    CLI::App app("Runs the library while one thing after another fails.", "faults");
    AddOptions(app, choice);
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    faults::Tally tally;
    try {
        faults::LiveComBlocks();
        faults::WatchCases(choice.part == "long" || choice.part == "reload" ? kLongCaseSeconds
                                                                            : kCaseSeconds);
        faults::CaseRunner runner(choice, tally);
        RunPart(runner);
    } catch (const std::exception& error) {
        std::printf("FAIL setup: %s %s %s: %s\n", choice.part.c_str(), choice.entry.c_str(),
                    choice.machine.c_str(), error.what());
        return kUsage;
    }
    const nlohmann::json result = {
        {"calls", tally.calls}, {"injected", tally.injected}, {"failures", tally.failures}};
    std::printf("RESULT %s\n", result.dump().c_str());
    return tally.failures.empty() ? 0 : kFailures;
}

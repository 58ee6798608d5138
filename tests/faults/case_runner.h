#pragma once

#include "faults/run.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace faults {

// The options of the command line.
struct Choice {
    std::string machine;  // file of the description
    std::string entry = "capture2";
    std::string part = "sweep";         // sweep, lies, changes, cold, reload or long
    std::string call;                   // run only this call: "117", "import:5", "dom:12", "alloc:900"
    std::string fault;                  // run only this fault
    std::optional<bool> from_there_on;  // run only one way: false once, true with all later calls
    std::size_t seed = 1;
    std::size_t stride = 1;      // run about one case in this many
    std::size_t loads = 10'000;  // how often the reload part loads the library
    std::size_t from = 0;        // index of the first case, to continue after a crash
};

// The totals of a run.
struct Tally {
    std::size_t calls = 0;                        // calls of a clean run that can fail
    std::size_t injected = 0;                     // cases that were run
    std::map<std::string, std::size_t> failures;  // by name of the broken condition
};

// Runs cases one after the other. Skips the cases that were not chosen, reports the running case to the
// watchdog, counts, and prints each failure with the arguments that repeat it.
class CaseRunner {
public:
    CaseRunner(const Choice& choice, Tally& tally) : choice_(choice), tally_(tally) {}

    const Choice& choice() const { return choice_; }
    Tally& tally() { return tally_; }

    // Runs one case. `arguments` select this case alone on the command line; `call` names the call that
    // fails. `body` returns the names of the conditions that do not hold.
    void Run(const std::string& arguments, const std::string& call,
             const std::function<std::vector<std::string>()>& body);

private:
    bool IsChosen();

    const Choice& choice_;
    Tally& tally_;
    std::size_t index_ = 0;
};

// The parts of the fault tests. Each throws std::exception if it cannot start.

// Makes every call fail in every way that fits it, alone and with all later calls.
void Sweep(CaseRunner& runner, Bench& bench);
// Makes every answer invalid: by table and at random.
void Lies(CaseRunner& runner, Bench& bench);
// Removes or adds disks and volumes after every call.
void Changes(CaseRunner& runner, Bench& bench);

// The parts below load the library themselves or build their own machine.

// Runs out of memory in the first call after loading.
void ColdStart(CaseRunner& runner, const std::filesystem::path& library,
               const machine::Description& description);
// Loads, calls and unloads the library repeatedly.
void Reload(CaseRunner& runner, const std::filesystem::path& library,
            const machine::Description& description);
// Uses a machine with 256 disks, 32,768 partitions and 10,000 volumes.
void LongLists(CaseRunner& runner, const Library& library);

}  // namespace faults

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

// What is chosen on the command line.
struct Choice {
    std::string machine;  // file of the description
    std::string entry = "capture2";
    std::string part = "sweep";         // sweep, lies, changes, cold, reload or long
    std::string call;                   // one call alone: "117", "import:5", "dom:12", "alloc:900"
    std::string fault;                  // one fault alone
    std::optional<bool> from_there_on;  // one way alone: once, or from there on
    std::size_t seed = 1;
    std::size_t stride = 1;      // one case in so many
    std::size_t loads = 10'000;  // of the library, by the part that reloads it
    std::size_t from = 0;        // the case to begin with: after a crash
};

// What the cases of a run came to.
struct Tally {
    std::size_t calls = 0;                        // that can be made to fail, in a clean run
    std::size_t injected = 0;                     // cases in which something was made to fail
    std::map<std::string, std::size_t> failures;  // by kind
};

// Runs cases one after the other: skips what was not chosen, names the case that runs to the watchdog,
// counts, and prints each failure with the arguments that repeat it.
class CaseRunner {
public:
    CaseRunner(const Choice& choice, Tally& tally) : choice_(choice), tally_(tally) {}

    const Choice& choice() const { return choice_; }
    Tally& tally() { return tally_; }

    // `arguments` choose this case alone, `call` is what goes wrong in it; `body` returns the names of what
    // does not hold.
    void Run(const std::string& arguments, const std::string& call,
             const std::function<std::vector<std::string>()>& body);

private:
    bool IsChosen();

    const Choice& choice_;
    Tally& tally_;
    std::size_t index_ = 0;
};

// The parts. Each throws std::exception where it cannot even begin.

// Every call fails once, and from there on, in every way that fits it.
void Sweep(CaseRunner& runner, Bench& bench);
// Every answer lies: by table and at random.
void Lies(CaseRunner& runner, Bench& bench);
// Disks and volumes go and come after every call.
void Changes(CaseRunner& runner, Bench& bench);

// The parts that load the library themselves.

// Memory runs out in the first call after loading.
void ColdStart(CaseRunner& runner, const std::filesystem::path& library,
               const machine::Description& description);
// The library is loaded, called and unloaded over and over.
void Reload(CaseRunner& runner, const std::filesystem::path& library,
            const machine::Description& description);
// A machine of 256 disks, 32,768 partitions and 10,000 volumes.
void LongLists(CaseRunner& runner, const Library& library);

}  // namespace faults

#pragma once

#include "faults/import_hooks.h"
#include "faults/library.h"
#include "machine/session.h"

#include <cstdint>
#include <string>
#include <vector>

namespace faults {

// What one call of an entry point left behind.
struct Outcome {
    std::uint32_t status = 0;  // 0 for a dump
    std::string output;        // the document, or the lines of the dump
    std::size_t errors = 0;    // lines of level error

    bool operator==(const Outcome&) const = default;
};

// A described machine under the library, one entry point, and what must hold after each call of it.
class Bench {
public:
    Bench(const Library& library, const EntryPoint& entry, machine::Description description);
    ~Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    machine::Simulation& simulation() { return session_.simulation(); }

    // Calls the entry point: a capture with the buffer of the clean run's length (and some more).
    Outcome Call();

    // The first clean run's, to which every later one is compared.
    const Outcome& clean() const { return clean_; }

    // The clean run's calls to the simulation, in order, with what each answered.
    std::vector<machine::CallRecord> CleanCalls();

    // Names what does not hold after a call: "handle", "object", "com", "memory", "status", "document" ...
    std::vector<std::string> Breaches(const Outcome& outcome);

    // Calls once more, with nothing failing; "next-run" among the breaches when it is not the clean run
    // again.
    std::vector<std::string> BreachesOfNextRun();

private:
    void TakeStock();
    Outcome CallCapture();
    Outcome CallDump();

    const Library& library_;
    const EntryPoint& entry_;
    machine::Session session_;
    std::string buffer_;
    Outcome clean_;
    Balance balance_;
    std::int64_t references_ = 0;
    std::int64_t com_blocks_ = 0;
    std::size_t handles_ = 0;
    std::size_t stale_uses_ = 0;
    std::size_t objects_ = 0;
};

}  // namespace faults

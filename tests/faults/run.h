#pragma once

#include "faults/import_hooks.h"
#include "faults/library.h"
#include "machine/session/session.h"

#include <cstdint>
#include <string>
#include <vector>

namespace faults {

// The result of one call of an entry point.
struct Outcome {
    std::uint32_t status = 0;  // 0 for a dump
    std::string output;        // the document, or the lines of the dump
    std::size_t errors = 0;    // number of error lines

    bool operator==(const Outcome&) const = default;
};

// Runs the library on a described machine, and checks after each call of one entry point that all conditions
// hold.
class Bench {
public:
    Bench(const Library& library, const EntryPoint& entry, machine::Description description);
    ~Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    machine::Simulation& simulation() { return session_.simulation(); }

    // Calls the entry point. A capture gets a buffer of the clean run's length plus a reserve.
    Outcome Call();

    // The result of the first clean run. Every later clean run must give the same.
    const Outcome& clean() const { return clean_; }

    // Records a clean run: its calls to the simulation, in order, with their answers.
    std::vector<machine::CallRecord> CleanCalls();

    // The names of the conditions that do not hold after a call: "handle", "object", "com", "memory",
    // "status", "document" and others.
    std::vector<std::string> Breaches(const Outcome& outcome);

    // Calls once more without faults, and checks the conditions. Adds "next-run" if the result differs from
    // the first clean run's.
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

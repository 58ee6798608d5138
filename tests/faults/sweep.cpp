// Makes every call fail, alone and with all later calls, in every way that fits it.

#include "faults/case_runner.h"
#include "faults/dom_hooks.h"
#include "faults/fault_kinds.h"
#include "faults/import_hooks.h"
#include "support/each_of.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace faults {

namespace {

// A kind of operation that is counted and made to fail.
struct Source {
    std::string_view prefix;                          // prefix of the call's number on the command line
    std::vector<std::string> (*names)(Bench& bench);  // the operations of a clean run, in order
    void (*arm)(Bench& bench, std::size_t ordinal, bool from_there_on, const FaultKind& kind);
    std::size_t (*hits)(Bench& bench);
    std::span<const std::string_view> kinds;  // kinds of fault that fit; empty: all
    bool stops_at_once;                       // no such call follows a failed one
};

constexpr std::array<std::string_view, 3> kImportKinds = {"not-found", "access-denied", "out-of-memory"};
constexpr std::array<std::string_view, 2> kDomKinds = {"invalid-function", "out-of-memory"};
constexpr std::array<std::string_view, 1> kAllocationKinds = {"out-of-memory"};

std::vector<std::string> SystemCalls(Bench& bench) {
    return support::EachOf(bench.CleanCalls(), &machine::CallRecord::name);
}

// Operations that are only counted; all have the same name.
template <class Meters>
std::vector<std::string> Steps(Bench& bench, Meters&& meter, const char* name) {
    meter().Disarm();
    bench.Call();
    return std::vector<std::string>(meter().steps(), name);
}

Meter& Imports() {
    return Watch().imports;
}
Meter& DomCalls() {
    return Dom().calls;
}
Meter& Allocations() {
    return Watch().allocations;
}

const Source kSources[] = {
    {"",
     &SystemCalls,
     [](Bench& bench, std::size_t ordinal, bool from_there_on, const FaultKind& kind) {
         bench.simulation().faults().FailOrdinal(ordinal, from_there_on, kind.codes);
     },
     [](Bench& bench) { return bench.simulation().faults().hits(); },
     {},
     false},
    {"import:", [](Bench& bench) { return Steps(bench, Imports, "an import"); },
     [](Bench& /*bench*/, std::size_t ordinal, bool from_there_on, const FaultKind& kind) {
         Watch().codes = kind.codes;
         Imports().Arm(ordinal, from_there_on);
     },
     [](Bench& /*bench*/) { return Imports().hits(); }, kImportKinds, false},
    {"dom:", [](Bench& bench) { return Steps(bench, DomCalls, "the XML component"); },
     [](Bench& /*bench*/, std::size_t ordinal, bool from_there_on, const FaultKind& kind) {
         Dom().code = static_cast<HRESULT>(kind.codes.com);
         DomCalls().Arm(ordinal, from_there_on);
     },
     [](Bench& /*bench*/) { return DomCalls().hits(); }, kDomKinds, true},
    {"alloc:", [](Bench& bench) { return Steps(bench, Allocations, "an allocation"); },
     [](Bench& /*bench*/, std::size_t ordinal, bool from_there_on, const FaultKind& /*kind*/) {
         Allocations().Arm(ordinal, from_there_on);
     },
     [](Bench& /*bench*/) { return Allocations().hits(); }, kAllocationKinds, false},
};

bool Fits(const Source& source, const FaultKind& kind) {
    return source.kinds.empty() ||
           std::find(source.kinds.begin(), source.kinds.end(), kind.name) != source.kinds.end();
}

bool IsWanted(const Choice& choice, const std::string& call, const FaultKind& kind, bool from_there_on) {
    return (choice.call.empty() || choice.call == call) &&
           (choice.fault.empty() || choice.fault == kind.name) &&
           choice.from_there_on.value_or(from_there_on) == from_there_on;
}

std::vector<std::string> RunCase(Bench& bench, const Source& source, std::size_t ordinal, bool from_there_on,
                                 const FaultKind& kind) {
    const std::size_t hits_before = source.hits(bench);
    source.arm(bench, ordinal, from_there_on, kind);
    const Outcome outcome = bench.Call();
    std::vector<std::string> breaches = bench.Breaches(outcome);
    if (source.hits(bench) == hits_before) {
        breaches.emplace_back("not-reached");  // a call of the clean run that this run did not make
    }
    for (std::string& breach : bench.BreachesOfNextRun()) {
        breaches.push_back("then " + std::move(breach));
    }
    return breaches;
}

void SweepCall(CaseRunner& runner, Bench& bench, const Source& source, std::size_t ordinal,
               const std::string& name) {
    const std::string call = std::string(source.prefix) + std::to_string(ordinal);
    for (const FaultKind& kind : FaultKinds()) {
        for (const bool from_there_on : {false, true}) {
            if (!Fits(source, kind) || (from_there_on && source.stops_at_once) ||
                !IsWanted(runner.choice(), call, kind, from_there_on)) {
                continue;
            }
            runner.Run("--call " + call + " --fault " + std::string(kind.name) +
                           (from_there_on ? " --from-there-on" : " --once"),
                       name, [&] { return RunCase(bench, source, ordinal, from_there_on, kind); });
        }
    }
}

}  // namespace

void Sweep(CaseRunner& runner, Bench& bench) {
    for (const Source& source : kSources) {
        const std::vector<std::string> names = source.names(bench);
        runner.tally().calls += names.size();
        for (std::size_t i = 0; i < names.size(); ++i) {
            SweepCall(runner, bench, source, i + 1, names[i]);
        }
    }
}

}  // namespace faults

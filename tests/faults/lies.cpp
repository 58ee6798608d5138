// Invalid answers: by table for every kind of call, and at random. The library's larger blocks end at guard
// pages, and garbage follows the answers in one run, so that a read past an answer crashes or shows.

#include "faults/case_runner.h"
#include "faults/lie_tables.h"
#include "support/request_watch.h"

#include <algorithm>
#include <map>

namespace faults {

namespace {

std::vector<std::string> RunCase(Bench& bench, std::size_t ordinal, const Lie& lie) {
    machine::FaultRule rule;
    rule.ordinal = ordinal;
    rule.action = lie;
    bench.simulation().faults().Add(rule);
    const Outcome outcome = bench.Call();
    // A volume is opened by the name that the system gives, which may be the lie.
    support::RequestsOfLibrary().opened.clear();
    std::vector<std::string> breaches = bench.Breaches(outcome);
    for (std::string& breach : bench.BreachesOfNextRun()) {
        breaches.push_back("then " + std::move(breach));
    }
    return breaches;
}

bool IsWanted(const Choice& choice, const std::string& call, const std::string& lie) {
    return (choice.call.empty() || choice.call == call) && (choice.fault.empty() || choice.fault == lie);
}

// Appends garbage to every answer of one run. The result must be that of a clean run.
std::vector<std::string> RunWithGarbage(Bench& bench) {
    machine::FaultRule rule;
    rule.action = &AppendGarbage;
    bench.simulation().faults().Add(rule);
    const Outcome outcome = bench.Call();
    std::vector<std::string> breaches = bench.Breaches(outcome);
    if (outcome != bench.clean()) {
        breaches.emplace_back("garbage-read");
    }
    bench.simulation().faults().Clear();
    return breaches;
}

// Distributes the table of one kind of call over the calls of that kind. Each lie goes to one of them.
class Dealer {
public:
    explicit Dealer(const std::vector<machine::CallRecord>& records) {
        for (const machine::CallRecord& record : records) {
            ++calls_[record.name];
        }
    }

    // True if the next call of that name takes the lie.
    bool Deals(const std::string& name, std::size_t lie) {
        constexpr std::size_t kTakers = 1;
        const std::size_t rounds = std::max<std::size_t>(1, calls_[name] / kTakers);
        return lie % rounds == seen_[name] % rounds;
    }
    void Pass(const std::string& name) { ++seen_[name]; }

private:
    std::map<std::string, std::size_t> calls_;
    std::map<std::string, std::size_t> seen_;
};

void LieInCall(CaseRunner& runner, Bench& bench, std::size_t ordinal, const machine::CallRecord& record,
               Dealer& dealer) {
    constexpr std::size_t kRandomLies = 4;
    const std::string call = std::to_string(ordinal);
    const auto run = [&](const std::string& name, const Lie& lie) {
        if (IsWanted(runner.choice(), call, name)) {
            runner.Run("--call " + call + " --fault " + name, record.name,
                       [&] { return RunCase(bench, ordinal, lie); });
        }
    };
    const std::vector<NamedLie> lies = LiesFor(record);
    for (std::size_t i = 0; i < lies.size(); ++i) {
        if (dealer.Deals(record.name, i)) {
            run(lies[i].name, lies[i].lie);
        }
    }
    dealer.Pass(record.name);
    for (std::size_t i = 0; i < kRandomLies; ++i) {
        const std::uint64_t seed = runner.choice().seed * 1'000'003 + ordinal * 101 + i;
        run("random-" + std::to_string(i), RandomLie(seed));
    }
}

}  // namespace

void Lies(CaseRunner& runner, Bench& bench) {
    const GuardedHeap guarded;
    if (IsWanted(runner.choice(), "0", "garbage")) {
        runner.Run("--call 0 --fault garbage", "every call", [&] { return RunWithGarbage(bench); });
    }
    const std::vector<machine::CallRecord> records = bench.CleanCalls();
    runner.tally().calls += records.size();
    Dealer dealer(records);
    for (std::size_t i = 0; i < records.size(); ++i) {
        LieInCall(runner, bench, i + 1, records[i], dealer);
    }
}

}  // namespace faults

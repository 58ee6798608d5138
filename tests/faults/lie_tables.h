#pragma once

#include "machine/simulation/call_log.h"
#include "machine/simulation/fault_plan.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace faults {

// Changes an answer into an invalid one.
using Lie = std::function<void(machine::Answer&)>;

struct NamedLie {
    std::string name;
    Lie lie;
};

// The lies that fit the call.
std::vector<NamedLie> LiesFor(const machine::CallRecord& record);

// Random bytes, lengths and results, by seed.
Lie RandomLie(std::uint64_t seed);

// Appends bytes behind the answer that are not part of it.
void AppendGarbage(machine::Answer& answer);

}  // namespace faults

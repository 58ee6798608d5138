#pragma once

#include "machine/call_log.h"
#include "machine/fault_plan.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace faults {

// Changes an answer into one that cannot be true.
using Lie = std::function<void(machine::Answer&)>;

struct NamedLie {
    std::string name;
    Lie lie;
};

// What a call of that kind can lie about.
std::vector<NamedLie> LiesFor(const machine::CallRecord& record);

// Anything: bytes, lengths, results, types.
Lie RandomLie(std::uint64_t seed);

// Bytes behind the answer that are no part of it.
void AppendGarbage(machine::Answer& answer);

}  // namespace faults

#pragma once

#include "machine/fault_plan.h"

#include <span>
#include <string_view>

namespace faults {

// A way for a call to the system to fail, as each family of calls reports it.
struct FaultKind {
    std::string_view name;
    machine::FaultCodes codes;
};

// All of them. An allocation knows one way only and has no kind.
std::span<const FaultKind> FaultKinds();

// Throws std::invalid_argument.
const FaultKind& FindFaultKind(std::string_view name);

}  // namespace faults

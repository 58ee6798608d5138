#pragma once

#include "machine/simulation/fault_plan.h"

#include <span>
#include <string_view>

namespace faults {

// A way in which a system call can fail, with the error code for each family of calls.
struct FaultKind {
    std::string_view name;
    machine::FaultCodes codes;
};

// All kinds. Imports, DOM calls and allocations use only some of them (sweep.cpp).
std::span<const FaultKind> FaultKinds();

}  // namespace faults

#pragma once

#include "faults/lie_tables.h"

namespace faults {

// A property with a value of every type that a variant knows, and with values that a type forbids.
void AddVariantLies(std::vector<NamedLie>& lies);

}  // namespace faults

#pragma once

#include "faults/lie_tables.h"

namespace faults {

// Values of every VARIANT type, including values that are invalid for their type.
void AddVariantLies(std::vector<NamedLie>& lies);

}  // namespace faults
